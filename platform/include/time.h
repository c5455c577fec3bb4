// SPDX-License-Identifier: MIT
// The system's <time.h> and the names that Windows' C runtime adds to it.
#pragma once
#pragma GCC system_header

#include_next <time.h>

#ifdef __cplusplus
#include "platformExport.h"

typedef time_t __time64_t;

extern "C"
{
    PLATFORM_EXPORT __time64_t _time64(__time64_t* result);
    // Null for times before 1970 or after the year 3000. The result belongs to the calling thread until its
    // next call of either.
    PLATFORM_EXPORT struct tm* _localtime64(const __time64_t* time);
    PLATFORM_EXPORT struct tm* _gmtime64(const __time64_t* time);
    PLATFORM_EXPORT void _tzset();
}
#endif
