// SPDX-License-Identifier: MIT
// The ways to log on to a directory that the dialog offers and the test tries.
#pragma once

#include <windows.h>

#include <array>

// The numbers are the item data of the dialog's combo box; 2 belongs to none.
enum eLDAPAuthMethod : DWORD
{
    eLDAPAuthTryAll = 0, // all the others in turn
    eLDAPAuthSimpleSSL = 1,
    eLDAPAuthNTLM = 3,
    eLDAPAuthDigest = 4,
    eLDAPAuthDPA = 5,
    eLDAPAuthSimplePlain = 6,
    eLDAPAuthNegotiate = 7,
};

struct LdapMethod
{
    eLDAPAuthMethod number;
    const wchar_t* text;      // in the combo box
    const wchar_t* beginText; // before the bind
    ULONG bind;               // LDAP_AUTH_..., or 0 for a simple bind
    int turn;                 // among those of "Try all", from 1 on
};

// In the combo box's order, after "Try all".
extern const std::array<LdapMethod, 6> kLdapMethods;
