// SPDX-License-Identifier: MIT
// The identity of a bind. Its texts are UTF-16 and their lengths count code units, as on Windows.
#pragma once

#include "windef.h"

#define SEC_WINNT_AUTH_IDENTITY_UNICODE 2

struct SEC_WINNT_AUTH_IDENTITY_W
{
    unsigned short* User;
    ULONG UserLength;
    unsigned short* Domain;
    ULONG DomainLength;
    unsigned short* Password;
    ULONG PasswordLength;
    ULONG Flags;
};
using SEC_WINNT_AUTH_IDENTITY = SEC_WINNT_AUTH_IDENTITY_W;
