// SPDX-License-Identifier: MIT
// The program as a module.
#pragma once

#include "windef.h"

#ifndef RC_INVOKED

#include "platformExport.h"

extern "C"
{
    // The instance handle of the program itself, whatever module is named.
    PLATFORM_EXPORT HMODULE GetModuleHandleW(LPCWSTR name);
    // The path of the program itself, whatever module is named.
    PLATFORM_EXPORT DWORD GetModuleFileNameW(HMODULE module, LPWSTR buffer, DWORD size);
}

#endif // RC_INVOKED
