// SPDX-License-Identifier: MIT
// Forms of the user's name. On Linux there is no domain: NameSamCompatible is HOST\user, NameDisplay the
// full name of the account, anything else ERROR_NONE_MAPPED.
#pragma once

#include "windef.h"

#include "platformExport.h"

enum EXTENDED_NAME_FORMAT
{
    NameUnknown = 0,
    NameSamCompatible = 2,
    NameDisplay = 3
};

extern "C"
{
    PLATFORM_EXPORT BYTE GetUserNameExW(EXTENDED_NAME_FORMAT format, LPWSTR buffer, PULONG size);
}
