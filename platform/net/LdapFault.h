// SPDX-License-Identifier: MIT
// What went wrong in an LDAP call: a Windows code and, as far as it is known, the cause. Each thread keeps
// its last fault for LdapGetLastError and ldap_err2stringW.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace platform
{

// The codes of the Windows client that are named here. Up to 0x50 they are the protocol's own (RFC 4511).
enum eLdapCode : std::uint32_t
{
    eLdapSuccess = 0x00,
    eLdapAuthMethodNotSupported = 0x07,
    eLdapReferral = 0x0a,
    eLdapSaslBindInProgress = 0x0e,
    eLdapInvalidCredentials = 0x31,
    eLdapResultsTooLarge = 0x46,
    eLdapServerDown = 0x51,
    eLdapLocalError = 0x52,
    eLdapDecodingError = 0x54,
    eLdapTimeout = 0x55,
    eLdapAuthUnknown = 0x56,
    eLdapParameterError = 0x59,
    eLdapNoMemory = 0x5a
};

// Of a cause no more bytes are looked at: one line of it is shown.
constexpr std::size_t kMostOfCause = 4096;

// What a failed connection tells of the server: nothing, for there is no way to it from here; that it gives
// no answer; or what it answered.
enum class LdapReach
{
    NoWay,
    NoAnswer,
    Answer
};

struct LdapFault
{
    std::uint32_t code = eLdapSuccess; // an eLdapCode or any other that a server sends
    std::string cause;                 // UTF-8, from wherever it came; empty when nobody knows
    LdapReach reach = LdapReach::Answer;

    explicit operator bool() const { return code != eLdapSuccess; }
};

// Keeps the fault of one more attempt in place of an earlier one, unless that one tells more of the server.
inline void KeepMoreTelling(LdapFault& kept, LdapFault fault)
{
    if (!kept || fault.reach >= kept.reach)
        kept = std::move(fault);
}

// Keeps a fault as the calling thread's last one, unless it is success, and gives its code.
std::uint32_t RememberFault(const LdapFault& fault);

// The code that OpenLDAP's library gave in Windows' numbers; the library's own ones are negative.
std::uint32_t WindowsCode(int libraryCode);

} // namespace platform
