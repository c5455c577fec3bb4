// SPDX-License-Identifier: MIT
// The product's dates: a serial number of days in a double, its arithmetic, and its text forms. The calendar
// is the Gregorian one for all years, also before its historical start. Nothing here throws or logs.
#pragma once

#include "foundation/Oriska.h"

#include <cstdint>
#include <ctime>

enum eDateStatus : int
{
    eDateValid = 0,
    eDateInvalid = 1,
    eDateNull = 2,
};

// 1 January of the year 100, and 31 December 9999 at 00:00: the usable range of a serial date.
constexpr double kDateMin = -657434.0;
constexpr double kDateMax = 2958465.0;

// Days since 30 December 1899 in the local wall clock, with no zone of its own. The fraction is the time of
// day. Below zero it runs away from zero as the day does: -1.25 is 29 December 1899 at 06:00.
struct DateValue
{
    double mDate = 0.0;
    eDateStatus mStatus = eDateNull;

    // Each gives -1 when the status is not valid, the date is above kDateMax or it cannot be split.
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    int GetDayOfWeek() const;
};

struct DateFields
{
    std::int32_t second;
    std::int32_t minute;
    std::int32_t hour;
    std::int32_t day;       // 1 to 31
    std::int32_t month;     // 1 to 12
    std::int32_t year;      // the full year
    std::int32_t dayOfWeek; // 1 is Sunday, 7 is Saturday
    std::int32_t dayOfYear; // 1 to 366
};

// Builds a serial date. False for what is not a date or time of day and for years above 9999; `date` is then
// untouched. Years 0 to 99 give dates below kDateMin.
bool DateFromFields(std::uint16_t year, std::uint16_t month, std::uint16_t day, std::uint16_t hour,
                    std::uint16_t minute, std::uint16_t second, double& date);

// Splits a serial date, rounded to the second. False below kDateMin, and for what is not a number or has no
// 32-bit day number; `result` is then untouched.
bool DateToFields(double date, DateFields& result);

// The date as a straight count of days, for subtraction: -1.25 gives -0.75.
double LinearDays(double date);

// Local date of a calendar time; invalid for a time that the run-time library or the calendar refuses. An
// invalid date carries kDateMax + 1, so that it prints as one.
DateValue DateFromTime(time_t t);

// Calendar time of a date, told from its distance to the present moment, which has to be within 68 years: a
// longer one counts as that. Never negative. A value of 0.0 gives 0, an invalid one the present moment.
time_t DateToTime(const DateValue& value);

// The "%c" text of the run-time library; a text in brackets or braces for what it cannot show, the empty one
// for a null value.
ZTString FormatLocalDate(const DateValue& value);

// The form of RFC 822, with the zone that the machine is in now: "Tue, 24 Nov 2026 20:51:14 +0100". Names of
// days and months that cannot be read are "???".
ZTString FormatRFC822Date(const DateValue& value);

// The form of ISO 8601, without a zone: "2026-11-24T20:51:14".
ZTString FormatISO8601Date(const DateValue& value);

// The timestamp escape of ODBC, in UTC: "{ts '2026-11-24 19:51:14' }". The years are kept within 1753 to
// 9999. Empty for a time that the run-time library refuses.
ZTString FormatODBCDate(time_t t);
