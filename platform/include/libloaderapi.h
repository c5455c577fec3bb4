// SPDX-License-Identifier: MIT
// Resources as bytes. Those of the program itself, whatever module is named (null, or its instance handle).
// Names and types are numbers (MAKEINTRESOURCEW).
#pragma once

#include "windef.h"

#ifndef RC_INVOKED

#include "platformExport.h"

extern "C"
{
    PLATFORM_EXPORT HRSRC FindResourceW(HMODULE module, LPCWSTR name, LPCWSTR type);
    PLATFORM_EXPORT HGLOBAL LoadResource(HMODULE module, HRSRC resource);
    PLATFORM_EXPORT LPVOID LockResource(HGLOBAL resource);
    PLATFORM_EXPORT DWORD SizeofResource(HMODULE module, HRSRC resource);
}

#endif // RC_INVOKED
