// SPDX-License-Identifier: MIT
// What went wrong in an LDAP call: a Windows code and, as far as it is known, the cause behind it. Each
// thread keeps its last fault for LdapGetLastError and ldap_err2stringW.
#pragma once

#include <cstdint>
#include <string>

struct LdapFault
{
    std::uint32_t code = 0; // LDAP_RETCODE; 0 is success
    std::string cause;      // UTF-8, from wherever it came; empty when nobody knows

    explicit operator bool() const { return code != 0; }
};

// Keeps a fault as the calling thread's last one, unless it is success, and gives its code.
std::uint32_t RememberFault(const LdapFault& fault);

// The code that OpenLDAP's library gave in Windows' numbers; its own ones are negative.
std::uint32_t WindowsCode(int libraryCode);
