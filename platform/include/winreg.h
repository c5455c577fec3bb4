// SPDX-License-Identifier: MIT
// The one registry key that the tree reads: SOFTWARE\Classes\MIME\Database\Rfc1766 under
// HKEY_LOCAL_MACHINE, the language tag and English name of each locale by its number. Every other key gives
// ERROR_FILE_NOT_FOUND.
#pragma once

#include "winnt.h"

#include "platformExport.h"

using LSTATUS = LONG;
using PHKEY = HKEY*;

#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(0x80000002))))
#define REG_SZ 1

extern "C"
{
    PLATFORM_EXPORT LSTATUS RegCreateKeyW(HKEY key, LPCWSTR name, PHKEY result);
    // Value names are the locale's number in four hexadecimal digits. `size` counts bytes, four a character.
    PLATFORM_EXPORT LSTATUS RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type,
                                             BYTE* data, LPDWORD size);
    PLATFORM_EXPORT LSTATUS RegCloseKey(HKEY key);
}
