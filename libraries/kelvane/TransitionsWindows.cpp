// SPDX-License-Identifier: MIT
// From the year's rule of the zone, which the system keeps as two dates, most of them in the form "last
// Sunday of October".
#include "foundation/Kelvane.h"

#include <chrono>
#include <utility>

namespace
{

using namespace std::chrono;

sys_days DateOf(const SYSTEMTIME& rule, int year)
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
    const bool midnight =
        rule.wHour == 23 && rule.wMinute == 59 && rule.wSecond == 59 && rule.wMilliseconds == 999;
    return midnight ? date + days(1) : date;
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
    sys_days first = DateOf(zone.DaylightDate, year);
    sys_days second = DateOf(zone.StandardDate, year);
    if (second < first)
        std::swap(first, second);
    const year_month_day from(first);
    const year_month_day to(second);
    month1 = static_cast<int>(static_cast<unsigned>(from.month()));
    day1 = static_cast<int>(static_cast<unsigned>(from.day()));
    month2 = static_cast<int>(static_cast<unsigned>(to.month()));
    day2 = static_cast<int>(static_cast<unsigned>(to.day()));
}
