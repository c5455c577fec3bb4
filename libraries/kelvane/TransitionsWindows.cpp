// SPDX-License-Identifier: MIT
// From the year's rule of the zone, which the system keeps as two dates, most of them in the form "last
// Sunday of October".
#include "foundation/Kelvane.h"

#include <chrono>
#include <compare>
#include <utility>

namespace
{

using namespace std::chrono;

// 0 where the rule is the year's edge, by which Windows marks that one of the year's halves is missing.
struct Day
{
    int month = 0;
    int day = 0;

    auto operator<=>(const Day&) const = default;
};

Day DayOf(const SYSTEMTIME& rule, int year)
{
    const auto of = std::chrono::year(year) / static_cast<int>(rule.wMonth);
    sys_days date;
    if (rule.wYear != 0)
    {
        date = of / static_cast<int>(rule.wDay);
    }
    else
    {
        constexpr int kLastWeek = 5;
        const weekday day(rule.wDayOfWeek);
        date = rule.wDay == kLastWeek ? sys_days(of / day[last]) : sys_days(of / day[rule.wDay]);
    }
    // Midnight at a day's end is kept as its last millisecond.
    const bool dayEnds =
        rule.wHour == 23 && rule.wMinute == 59 && rule.wSecond == 59 && rule.wMilliseconds == 999;
    const bool dayBegins =
        rule.wHour == 0 && rule.wMinute == 0 && rule.wSecond == 0 && rule.wMilliseconds == 0;
    const year_month_day fields(dayEnds ? date + days(1) : date);
    const Day found = {static_cast<int>(static_cast<unsigned>(fields.month())),
                       static_cast<int>(static_cast<unsigned>(fields.day()))};
    return (dayEnds || dayBegins) && found == Day{1, 1} ? Day{} : found;
}

} // namespace

void GetTimeZoneTransitionDates(int year, int& month1, int& day1, int& month2, int& day2)
{
    month1 = day1 = month2 = day2 = 0;
    TIME_ZONE_INFORMATION zone{};
    if (year < 1 || year > 9999 ||
        !GetTimeZoneInformationForYear(static_cast<USHORT>(year), nullptr, &zone) ||
        zone.StandardDate.wMonth == 0 || zone.DaylightDate.wMonth == 0)
        return;
    Day first = DayOf(zone.DaylightDate, year);
    Day second = DayOf(zone.StandardDate, year);
    if (first == Day{} || (second != Day{} && second < first))
        std::swap(first, second);
    month1 = first.month;
    day1 = first.day;
    month2 = second.month;
    day2 = second.day;
}
