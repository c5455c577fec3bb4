// SPDX-License-Identifier: MIT
// From the C library's local time, which reads the machine's zone data, or a rule in TZ, for any year.
#include "foundation/Kelvane.h"

#include <cstdlib>
#include <ctime>

namespace
{

constexpr std::time_t kDay = 86'400;

struct Clock
{
    long offset = 0; // seconds east of UTC
    bool daylight = false;

    bool operator==(const Clock&) const = default;
};

Clock ClockAt(std::time_t time)
{
    std::tm local{};
    localtime_r(&time, &local);
    return {local.tm_gmtoff, local.tm_isdst > 0};
}

// The first moment after `before` with another clock; there is one not after `after`.
std::time_t ChangeBetween(std::time_t before, std::time_t after)
{
    const Clock old = ClockAt(before);
    while (after - before > 1)
    {
        const std::time_t middle = before + (after - before) / 2;
        (ClockAt(middle) == old ? before : after) = middle;
    }
    return after;
}

} // namespace

void GetTimeZoneTransitionDates(int year, int& month1, int& day1, int& month2, int& day2)
{
    month1 = day1 = month2 = day2 = 0;
    constexpr int kLastYear = 9999;
    if (year < 1 || year > kLastYear)
        return;
    tzset();
    std::tm newYear{};
    newYear.tm_year = year - 1900;
    newYear.tm_mday = 1;
    const std::time_t start = timegm(&newYear);
    // A day more at both ends: the year is that of the local clock.
    constexpr int kDays = 368;
    int found = 0;
    for (int day = -1; day < kDays && found < 2; ++day)
    {
        const std::time_t before = start + day * kDay;
        const Clock old = ClockAt(before);
        if (ClockAt(before + kDay) == old)
            continue;
        const std::time_t change = ChangeBetween(before, before + kDay);
        const Clock fresh = ClockAt(change);
        // Where the zone itself moves, or its daylight time becomes its standard, nobody puts the clock
        // forward or back.
        if (fresh.offset == old.offset || fresh.daylight == old.daylight)
            continue;
        const std::time_t wall = change + old.offset;
        std::tm date{};
        gmtime_r(&wall, &date);
        if (date.tm_year + 1900 != year)
            continue;
        (found == 0 ? month1 : month2) = date.tm_mon + 1;
        (found == 0 ? day1 : day2) = date.tm_mday;
        ++found;
    }
}
