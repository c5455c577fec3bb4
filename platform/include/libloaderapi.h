// SPDX-License-Identifier: MIT
// Resources as bytes. Those of the program itself, whatever module is named (null, or its instance handle).
// Names and types are numbers (MAKEINTRESOURCEW).
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
    PLATFORM_EXPORT HRSRC FindResourceW(HMODULE module, LPCWSTR name, LPCWSTR type);
    PLATFORM_EXPORT HGLOBAL LoadResource(HMODULE module, HRSRC resource);
    PLATFORM_EXPORT LPVOID LockResource(HGLOBAL resource);
    PLATFORM_EXPORT DWORD SizeofResource(HMODULE module, HRSRC resource);
}

#endif // RC_INVOKED
