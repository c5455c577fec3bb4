// SPDX-License-Identifier: MIT
#include "foundation/DateValue.h"
#include "foundation/Kelvane.h"

#include <windows.h>

#include <cstdlib>
#include <cwchar>
#include <iterator>
#include <time.h>

namespace
{

// Where the C library's header promises that the call throws nothing, the compiler would leave out the
// handler of a fault inside it. It makes no such promise for what a volatile pointer leads to.
std::size_t (*const volatile gFormatTime)(wchar_t*, std::size_t, const wchar_t*, const tm*) = std::wcsftime;

// Names by number, from 1; "???" for any other number.
template <std::size_t Count>
const wchar_t* Name(const wchar_t* const (&names)[Count], int number)
{
    return number >= 1 && number <= static_cast<int>(Count) ? names[number - 1] : L"???";
}

constexpr const wchar_t* kDayNames[] = {L"Sun", L"Mon", L"Tue", L"Wed", L"Thu", L"Fri", L"Sat"};
constexpr const wchar_t* kMonthNames[] = {L"Jan", L"Feb", L"Mar", L"Apr", L"May", L"Jun",
                                          L"Jul", L"Aug", L"Sep", L"Oct", L"Nov", L"Dec"};

tm ToTm(const DateFields& fields)
{
    tm time{};
    time.tm_year = fields.year - 1900;
    time.tm_mon = fields.month - 1;
    time.tm_mday = fields.day;
    time.tm_hour = fields.hour;
    time.tm_min = fields.minute;
    time.tm_sec = fields.second;
    time.tm_wday = fields.dayOfWeek - 1;
    time.tm_yday = fields.dayOfYear - 1;
    return time;
}

// Minutes to add to local time to get UTC, as the machine's zone is at this moment.
LONG PresentBias()
{
    TIME_ZONE_INFORMATION zone{};
    const bool daylight = GetTimeZoneInformation(&zone) == TIME_ZONE_ID_DAYLIGHT;
    return zone.Bias + (daylight ? zone.DaylightBias : zone.StandardBias);
}

} // namespace

ZTString FormatLocalDate(const DateValue& value)
{
    constexpr double kFirstShownDate = 100.0; // 9 April 1900
    ZTString text;
    if (value.mStatus == eDateNull)
        return text;
    DateFields fields;
    if (value.mDate < kFirstShownDate)
        text.Format(L"[bad date value - {0:f}]", value.mDate);
    else if (value.mStatus == eDateInvalid || value.mDate > kDateMax || !DateToFields(value.mDate, fields))
        text.Format(L"{{invalid date - {0:f} }", value.mDate);
    else
    {
        const tm time = ToTm(fields);
        constexpr int kRoom = 128;
        wchar_t* buffer = text.GetBuffer(kRoom);
        buffer[0] = 0;
        const CatchSEH guard;
        try
        {
            gFormatTime(buffer, kRoom, L"%c", &time);
            text.ReleaseBuffer();
        }
        catch (...)
        {
            text.Format(L"{{ invalid date ex - {0:f} }", value.mDate);
        }
    }
    return text;
}

ZTString FormatRFC822Date(const DateValue& value)
{
    const LONG bias = PresentBias();
    const LONG distance = bias < 0 ? -bias : bias;
    ZTString text;
    text.Format(L"{0:s}, {1:d} {2:s} {3:d} {4:02d}:{5:02d}:{6:02d} {7:s}{8:02d}{9:02d}",
                Name(kDayNames, value.GetDayOfWeek()), value.GetDay(), Name(kMonthNames, value.GetMonth()),
                value.GetYear(), value.GetHour(), value.GetMinute(), value.GetSecond(),
                bias > 0 ? L"-" : L"+", distance / 60, distance % 60);
    return text;
}

ZTString FormatISO8601Date(const DateValue& value)
{
    ZTString text;
    text.Format(L"{0:04d}-{1:02d}-{2:02d}T{3:02d}:{4:02d}:{5:02d}", value.GetYear(), value.GetMonth(),
                value.GetDay(), value.GetHour(), value.GetMinute(), value.GetSecond());
    return text;
}

ZTString FormatODBCDate(time_t t)
{
    ZTString text;
    const __time64_t calendarTime = t;
    const tm* utc = _gmtime64(&calendarTime);
    if (utc == nullptr)
        return text;
    int year = utc->tm_year + 1900;
    int month = utc->tm_mon + 1;
    int day = utc->tm_mday;
    if (year < 1753)
    {
        year = 1753;
        month = day = 1;
    }
    else if (year > 9999)
    {
        year = 9999;
        month = 12;
        day = 31;
    }
    text.Format(L"{{ts '{0:d}-{1:02d}-{2:02d} {3:02d}:{4:02d}:{5:02d}' }", year, month, day, utc->tm_hour,
                utc->tm_min, utc->tm_sec);
    return text;
}
