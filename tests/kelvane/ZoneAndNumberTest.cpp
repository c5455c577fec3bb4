// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"
#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <cmath>

constexpr int kFirstYear = 2017;

static std::string DatesOf(int year)
{
    int dates[4];
    GetTimeZoneTransitionDates(year, dates[0], dates[1], dates[2], dates[3]);
    char text[64];
    std::snprintf(text, sizeof text, "%02d-%02d %02d-%02d", dates[0], dates[1], dates[2], dates[3]);
    return text;
}

// A Windows program runs in the zone that it was started in; its data knows two changes a year at most.
static bool CanRunIn(std::string_view zone)
{
    const char* const own = std::getenv("TZ");
    return !RunsOnWindows() || (own != nullptr && own == zone);
}

// From the zones' published rules, as `zdump -v` of tzdata 2024 tells them.
TEST(Transitions, AreTheDaysOnWhichTheClockIsPutForwardOrBack)
{
    const std::string lastSundays =
        "03-26 10-29, 03-25 10-28, 03-31 10-27, 03-29 10-25, 03-28 10-31, 03-27 10-30, 03-26 10-29";
    // Zone, what Tavo says of 2017 to 2023, why.
    const std::tuple<const char*, std::string, const char*> rows[] = {
        {"Europe/Berlin", lastSundays, "the last Sundays"},
        {"Australia/Lord_Howe",
         "04-02 10-01, 04-01 10-07, 04-07 10-06, 04-05 10-04, 04-04 10-03, 04-03 10-02, 04-02 10-01",
         "southern, and half an hour's daylight time"},
        {"Europe/Dublin", lastSundays, "winter is the exception there"},
        {"Africa/Casablanca",
         "03-26 05-21, 03-25 05-13, 05-05 06-09, 04-19 05-31, 04-11 05-16, 03-27 05-08, 03-19 04-23",
         "up to four changes a year: the first two"},
        {"Pacific/Apia",
         "04-02 09-24, 04-01 09-30, 04-07 09-29, 04-05 09-27, 04-04 00-00, 00-00 00-00, 00-00 00-00",
         "daylight time given up: one change, then none"},
        {"America/Asuncion",
         "03-26 10-01, 03-25 10-07, 03-24 10-06, 03-22 10-04, 03-28 10-03, 03-27 10-02, 03-26 10-01",
         "changes at midnight count for the day that begins"},
        {"Asia/Pyongyang", Repeated("00-00 00-00, ", 6) + "00-00 00-00", "the zone itself moved in 2018"},
        {"EST5EDT,M3.2.0,M11.1.0",
         "03-12 11-05, 03-11 11-04, 03-10 11-03, 03-08 11-01, 03-14 11-07, 03-13 11-06, 03-12 11-05",
         "a rule in place of a name"},
        {"AAA-3BBB,J1/1,J180", Repeated("01-01 06-29, ", 6) + "01-01 06-29",
         "New Year, still December in UTC"},
    };
    for (const auto& [name, expected, why] : rows)
    {
        if (!CanRunIn(name))
            continue;
        const Variable zone("TZ", name);
        std::string dates = DatesOf(kFirstYear);
        for (int year = kFirstYear + 1; year < kFirstYear + 7; ++year)
            dates += ", " + DatesOf(year);
        EXPECT_EQ(dates, expected) << name << ": " << why;
    }
}

TEST(Transitions, AreFoundInAnyYear)
{
    if (!CanRunIn("Europe/Berlin"))
        GTEST_SKIP() << "another zone";
    const Variable zone("TZ", "Europe/Berlin");
    EXPECT_EQ(DatesOf(2100), "03-28 10-31");
    EXPECT_EQ(DatesOf(9999), "03-28 10-31");
    EXPECT_EQ(DatesOf(0), "00-00 00-00");
    EXPECT_EQ(DatesOf(10000), "00-00 00-00");
    if (RunsOnWindows())
        return; // its zone rules begin later
    EXPECT_EQ(DatesOf(1980), "04-06 09-28");
    EXPECT_EQ(DatesOf(1850), "00-00 00-00");
}

TEST(NumberFormat, IsTheUsersOwn)
{
    const std::string endless(1000, 'x');
    const std::tuple<const char*, double, const wchar_t*> rows[] = {
        {"C", 1.2, L"1.2"},
        {"C", 100, L"100"},
        {"C", -1e-10, L"0"},
        {"C", 1.23456789012, L"1.23456789"},
        {"C", 1234567.25, L"1234567.25"},
        {"C", 1e20, L"100000000000000000000"},
        {"C", -HUGE_VAL, L"-inf"},
        {"de_DE.UTF-8", 1234567.25, L"1234567,25"},
        {"fa_IR.UTF-8", 1.2, L"1.2"}, // not in its own digits
        {"xx_XX.UTF-8", 1.2, L"1.2"},
        {endless.c_str(), 1.2, L"1.2"},
    };
    for (const auto& [name, number, shown] : rows)
    {
        if (RunsOnWindows() && std::string_view(name) != "C")
            continue; // the format lies in the registry there, which all tests share
        const Variable locale("LC_ALL", name);
        EXPECT_EQ(FormatFloatingPointNum(number, false, -1).AsView(), shown) << name << " " << number;
    }
}
