// SPDX-License-Identifier: MIT
// The system's <wchar.h> and the names that Windows' C runtime adds to it.
#pragma GCC system_header

#include_next <wchar.h>

// The system's header is read several times, each time for a part of it.
#if defined(__cplusplus) && !defined(TAVO_WCHAR_H)
#define TAVO_WCHAR_H
#include "platformExport.h"

extern "C"
{
    // For the caller to free().
    PLATFORM_EXPORT wchar_t* _wcsdup(const wchar_t* text);
}

// The form with two arguments that Windows has; its state belongs to the calling thread.
PLATFORM_EXPORT wchar_t* wcstok(wchar_t* text, const wchar_t* delimiters);
#endif
