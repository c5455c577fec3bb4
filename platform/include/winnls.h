// SPDX-License-Identifier: MIT
// Code pages and locales. The ANSI code page is the character set of the user's locale; both locales are
// read from the environment or the system's files, never from setlocale.
#pragma once

#include "winnt.h"

#include "platformExport.h"

#define CP_ACP 0
#define LOCALE_CUSTOM_DEFAULT 0x0C00

extern "C"
{
    // CP_ACP, flags 0, no default character of the caller's. Counts of wide characters are counts of code
    // points.
    PLATFORM_EXPORT int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int wideLength,
                                            LPSTR narrow, int narrowSize, LPCSTR defaultCharacter,
                                            BOOL* usedDefault);

    // The locale of LC_ALL, LC_NUMERIC or LANG, the first that is set; 0x0409 for C, POSIX and none, 0x0C00
    // for one that has no number of its own.
    PLATFORM_EXPORT LCID GetUserDefaultLCID();
    // The locale of /etc/default/locale or /etc/locale.conf.
    PLATFORM_EXPORT LCID GetSystemDefaultLCID();
}
