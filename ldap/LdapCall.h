// SPDX-License-Identifier: MIT
// How the LDAP test hands texts to the client and tells a call's result.
#pragma once

#include "foundation/Oriska.h"

#include <winldap.h>

// The client takes texts without const and leaves them as they are.
inline PWCHAR LdapText(const wchar_t* text)
{
    return const_cast<PWCHAR>(text);
}

inline const wchar_t* LdapOutcome(ULONG result)
{
    return result == 0 ? L"succeeded" : L"failed";
}

// What the client says of a code. It is taken before the next append, which serves messages: a call that
// fails there has the client say something else.
inline ZTString LdapErrorText(ULONG code)
{
    return ldap_err2stringW(code);
}

inline ZTString LdapResultLine(ULONG result)
{
    return _StrFormat(L"{0:s} ({1:08X})\r\n", {LdapOutcome(result), result});
}
