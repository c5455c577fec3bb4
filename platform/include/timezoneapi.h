// SPDX-License-Identifier: MIT
// The time zone in force: of TZ, else of the system.
#pragma once

#include "windef.h"

#include "platformExport.h"

#define TIME_ZONE_ID_UNKNOWN 0
#define TIME_ZONE_ID_STANDARD 1
#define TIME_ZONE_ID_DAYLIGHT 2

struct SYSTEMTIME
{
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};

struct TIME_ZONE_INFORMATION
{
    LONG Bias;
    WCHAR StandardName[32];
    SYSTEMTIME StandardDate;
    LONG StandardBias;
    WCHAR DaylightName[32];
    SYSTEMTIME DaylightDate;
    LONG DaylightBias;
};
using LPTIME_ZONE_INFORMATION = TIME_ZONE_INFORMATION*;

extern "C"
{
    // Biases are of the current year; the names are Windows' own where the zone has a counterpart there, else
    // the zone's abbreviations. Daylight time is always the later clock, also where the zone's source calls
    // winter the exception (Dublin).
    PLATFORM_EXPORT DWORD GetTimeZoneInformation(LPTIME_ZONE_INFORMATION information);
}
