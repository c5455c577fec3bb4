// SPDX-License-Identifier: MIT
#include "foundation/DateValue.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <time.h>

namespace
{

// The length of month m is entry m minus entry m - 1; the last entry is the length of a common year.
constexpr std::int32_t DaysBeforeMonth[13] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};

constexpr std::int32_t kDaysToEpoch = 693959; // from 1 January of the year 0 to 30 December 1899
constexpr std::int32_t kDaysIn400Years = 146097;
constexpr std::int32_t kDaysInCentury = 36524; // but for the first of the 400-year cycle, which has one more
constexpr std::int32_t kDaysIn4Years = 1461;
constexpr double kHalfSecond = 5.787037037037037e-6; // in days
constexpr double kSecondsInDay = 86400.0;

// A field by the field rule, or -1.
std::int32_t Field(const DateValue& value, std::int32_t DateFields::*field)
{
    DateFields fields;
    if (value.mStatus != eDateValid || value.mDate > kDateMax || !DateToFields(value.mDate, fields))
        return -1;
    return fields.*field;
}

// Splits a day of the year, counted from 0, into month and day.
void SplitDayOfYear(std::int32_t dayIndex, bool leapYear, DateFields& fields)
{
    constexpr std::int32_t kLeapDay = 59;
    if (leapYear && dayIndex == kLeapDay)
    {
        fields.month = 2;
        fields.day = 29;
        return;
    }
    const std::int32_t day = leapYear && dayIndex > kLeapDay ? dayIndex : dayIndex + 1;
    fields.month = day / 32 + 1;
    while (day > DaysBeforeMonth[fields.month])
        ++fields.month;
    fields.day = day - DaysBeforeMonth[fields.month - 1];
}

} // namespace

int DateValue::GetYear() const
{
    return Field(*this, &DateFields::year);
}

int DateValue::GetMonth() const
{
    return Field(*this, &DateFields::month);
}

int DateValue::GetDay() const
{
    return Field(*this, &DateFields::day);
}

int DateValue::GetHour() const
{
    return Field(*this, &DateFields::hour);
}

int DateValue::GetMinute() const
{
    return Field(*this, &DateFields::minute);
}

int DateValue::GetSecond() const
{
    return Field(*this, &DateFields::second);
}

int DateValue::GetDayOfWeek() const
{
    return Field(*this, &DateFields::dayOfWeek);
}

bool DateFromFields(std::uint16_t year, std::uint16_t month, std::uint16_t day, std::uint16_t hour,
                    std::uint16_t minute, std::uint16_t second, double& date)
{
    if (year > 9999 || month < 1 || month > 12)
        return false;
    const bool leapYear = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    const std::int32_t monthLength =
        DaysBeforeMonth[month] - DaysBeforeMonth[month - 1] + (leapYear && month == 2 ? 1 : 0);
    if (day == 0 || day > monthLength || hour > 23 || minute > 59 || second > 59)
        return false;

    std::int32_t dayNumber =
        year * 365 + year / 4 + DaysBeforeMonth[month - 1] + year / 400 - year / 100 + day - kDaysToEpoch;
    if (leapYear && month <= 2)
        --dayNumber;
    const double fraction = ((hour * 60 + minute) * 60 + second) / kSecondsInDay;
    date = dayNumber < 0 ? dayNumber - fraction : dayNumber + fraction;
    return true;
}

bool DateToFields(double date, DateFields& result)
{
    constexpr double kDayNumberMax = std::numeric_limits<std::int32_t>::max() - kDaysToEpoch - 1;
    if (!(date >= kDateMin && date <= kDayNumberMax))
        return false;

    const double rounded = date > 0.0 ? date + kHalfSecond : date - kHalfSecond;
    const std::int32_t dayNumber = static_cast<std::int32_t>(rounded) + kDaysToEpoch;
    const double magnitude = std::fabs(rounded);
    const auto secondOfDay = static_cast<std::int32_t>((magnitude - std::floor(magnitude)) * kSecondsInDay);

    const std::int32_t cycle = dayNumber / kDaysIn400Years;
    const std::int32_t dayOfCycle = dayNumber - cycle * kDaysIn400Years;
    const std::int32_t century = (dayOfCycle - 1) / kDaysInCentury;
    // Four-year group of the century, and the day in it, from 0; the first century has one day more.
    std::int32_t day = century != 0 ? dayOfCycle - 1 - century * kDaysInCentury + 1 : dayOfCycle;
    const std::int32_t group = day / kDaysIn4Years;
    day -= group * kDaysIn4Years;
    // The first group of the other centuries begins with a common year.
    const bool leapGroup = century == 0 || group != 0;
    std::int32_t yearOfGroup;
    std::int32_t dayOfYear; // from 0
    if (leapGroup)
    {
        yearOfGroup = (day - 1) / 365;
        dayOfYear = yearOfGroup != 0 ? day - 1 - yearOfGroup * 365 : day;
    }
    else
    {
        --day;
        yearOfGroup = day / 365;
        dayOfYear = day - yearOfGroup * 365;
    }

    result.dayOfWeek = (dayNumber - 1) % 7 + 1;
    result.dayOfYear = dayOfYear + 1;
    result.year = yearOfGroup + 4 * (group + 25 * (century + 4 * cycle));
    SplitDayOfYear(dayOfYear, leapGroup && yearOfGroup == 0, result);
    result.second = secondOfDay % 60;
    result.minute = secondOfDay / 60 % 60;
    result.hour = secondOfDay / 3600;
    return true;
}

double LinearDays(double date)
{
    if (date >= 0.0)
        return date;
    const double day = std::ceil(date);
    return day - (date - day);
}

DateValue DateFromTime(time_t t)
{
    DateValue value{kDateMax + 1, eDateInvalid};
    const __time64_t time = t;
    const tm* local = _localtime64(&time);
    if (local == nullptr)
        return value;
    const auto narrow = [](int field) { return static_cast<std::uint16_t>(field); };
    if (DateFromFields(narrow(local->tm_year + 1900), narrow(local->tm_mon + 1), narrow(local->tm_mday),
                       narrow(local->tm_hour), narrow(local->tm_min), narrow(local->tm_sec), value.mDate))
        value.mStatus = eDateValid;
    return value;
}

time_t DateToTime(const DateValue& value)
{
    if (value.mDate == 0.0)
        return 0;
    const DateValue present = DateFromTime(_time64(nullptr));
    const time_t base = _time64(nullptr);
    double delta = 0.0;
    if (value.mStatus == eDateValid && present.mStatus == eDateValid)
        delta = LinearDays(value.mDate) - LinearDays(present.mDate);
    // What is added is not half a second here: it only lifts a whole number that came out a little short.
    constexpr double kLimit = std::numeric_limits<std::int32_t>::max();
    const double seconds = std::fmin(std::fmax(delta * 24.0 * 60.0 * 60.0 + kHalfSecond, -kLimit), kLimit);
    time_t result = std::max<time_t>(base + static_cast<std::int32_t>(seconds), 0);
    if (value.GetSecond() == 0 && result % 60 == 1)
        --result;
    return result;
}
