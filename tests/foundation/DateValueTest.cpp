// SPDX-License-Identifier: MIT
#include "foundation/DateValue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>

// year, month, day, hour, minute, second, day of the week, day of the year
using Fields = std::tuple<int, int, int, int, int, int, int, int>;

// The numbers belong to the interface.
static_assert(eDateValid == 0 && eDateInvalid == 1 && eDateNull == 2);

static Fields Split(double date)
{
    DateFields f{};
    EXPECT_TRUE(DateToFields(date, f)) << date;
    return {f.year, f.month, f.day, f.hour, f.minute, f.second, f.dayOfWeek, f.dayOfYear};
}

// Without the day of the year.
static Fields Read(const DateValue& date)
{
    return {date.GetYear(),   date.GetMonth(),  date.GetDay(),       date.GetHour(),
            date.GetMinute(), date.GetSecond(), date.GetDayOfWeek(), 0};
}

static double Build(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    const auto narrow = [](int field) { return static_cast<std::uint16_t>(field); };
    double date = std::numeric_limits<double>::quiet_NaN();
    const bool built = DateFromFields(narrow(year), narrow(month), narrow(day), narrow(hour), narrow(minute),
                                      narrow(second), date);
    EXPECT_EQ(built, !std::isnan(date));
    return date;
}

static DateValue Valid(double date)
{
    return {date, eDateValid};
}

// Every day with another time of day, each second on both sides of zero, against the library's calendar.
TEST(DateValue, AgreesWithTheCalendarOnEveryDayOfTheYears100To9999)
{
    using namespace std::chrono;
    const sys_days epoch = year{1899} / December / 30;
    const sys_days last = year{9999} / December / 31;
    int secondOfDay = 86400 - 7919; // the first day at midnight: below that is out of the range
    for (sys_days day = year{100} / January / 1; day <= last; day += days{1})
    {
        secondOfDay = (secondOfDay + 7919) % 86400;
        const year_month_day ymd = day;
        const auto months = static_cast<int>(static_cast<unsigned>(ymd.month()));
        const auto dayOfMonth = static_cast<int>(static_cast<unsigned>(ymd.day()));
        const auto years = static_cast<int>(ymd.year());
        const auto hour = secondOfDay / 3600, minute = secondOfDay / 60 % 60, second = secondOfDay % 60;

        const double number = static_cast<double>((day - epoch).count());
        const double fraction = secondOfDay / 86400.0;
        const double date = Build(years, months, dayOfMonth, hour, minute, second);
        ASSERT_EQ(date, number < 0 ? number - fraction : number + fraction);

        const auto dayOfYear = static_cast<int>((day - sys_days{ymd.year() / January / 1}).count() + 1);
        const auto weekday = static_cast<int>(std::chrono::weekday{day}.c_encoding() + 1);
        ASSERT_EQ(Split(date), Fields(years, months, dayOfMonth, hour, minute, second, weekday, dayOfYear));
    }
}

TEST(DateValue, IsRoundedToTheSecond)
{
    EXPECT_EQ(Split(2.999996), Fields(1900, 1, 2, 0, 0, 0, 3, 2)); // 0.35 s before midnight
    EXPECT_EQ(Split(1.99999999), Fields(1900, 1, 1, 0, 0, 0, 2, 1));
    EXPECT_EQ(Split(2958465.99999), Fields(9999, 12, 31, 23, 59, 59, 6, 365));
}

TEST(DateValue, RefusesWhatCannotBeSplit)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double date : {-657434.5, -1e300, 1e300, 2146789688.0, infinity, -infinity,
                              std::numeric_limits<double>::quiet_NaN()})
    {
        DateFields fields{};
        fields.year = -7;
        EXPECT_FALSE(DateToFields(date, fields)) << date;
        EXPECT_EQ(fields.year, -7) << "the record is untouched";
        EXPECT_EQ(Valid(date).GetYear(), -1);
    }
    DateFields fields;
    EXPECT_TRUE(DateToFields(2146789687.0, fields)) << "the last day number of 32 bits";
}

TEST(DateValue, RefusesWhatIsNoDate)
{
    const std::tuple<int, int, int, int, int, int> kCases[] = {
        {1900, 2, 29, 0, 0, 0}, {2001, 2, 29, 0, 0, 0}, {2000, 2, 30, 0, 0, 0}, {2001, 4, 31, 0, 0, 0},
        {2001, 1, 0, 0, 0, 0},  {2001, 1, 32, 0, 0, 0}, {2001, 1, 1, 24, 0, 0}, {2001, 1, 1, 0, 60, 0},
        {2001, 1, 1, 0, 0, 60}, {10000, 1, 1, 0, 0, 0},
    };
    for (const auto& row : kCases)
        EXPECT_TRUE(std::isnan(std::apply(Build, row))) << testing::PrintToString(row);
    for (const int month : {0, 13, 14, 15, 255, 65535})
        for (int day = 1; day <= 31; ++day)
            EXPECT_TRUE(std::isnan(Build(2001, month, day))) << month << " " << day;
    EXPECT_EQ(Build(2000, 2, 29), 36585.0);
    EXPECT_LT(Build(99, 12, 31), kDateMin) << "built, though it cannot be split";
}

TEST(DateValue, ReadsFieldsOfValidDatesUpToTheLastMidnightAlone)
{
    const DateValue kUnreadable[] = {
        {}, {2.0, eDateInvalid}, {2.0, eDateNull}, Valid(2958465.5), Valid(-657435.0)};
    for (const DateValue& value : kUnreadable)
        EXPECT_EQ(Read(value), Fields(-1, -1, -1, -1, -1, -1, -1, 0));
    EXPECT_EQ(Read(Valid(-1.25)), Fields(1899, 12, 29, 6, 0, 0, 6, 0));
}

TEST(DateValue, CountsDaysStraightAcrossZero)
{
    const double kCases[][2] = {{2.5, 2.5}, {0.0, 0.0}, {-0.5, 0.5}, {-1.25, -0.75}, {-2.0, -2.0}};
    for (const auto& row : kCases)
        EXPECT_EQ(LinearDays(row[0]), row[1]) << row[0];
}

TEST(DateValue, GoesBackToTheMomentItComesFrom)
{
    const time_t now = time(nullptr);
    const DateValue date = DateFromTime(now);
    EXPECT_EQ(date.mStatus, eDateValid);

    // The present moment is read twice meanwhile, and a second may begin between.
    for (const time_t distance : {0, 1, -1, 3600, -86400 * 3})
    {
        DateValue other = date;
        other.mDate += static_cast<double>(distance) / 86400.0;
        const time_t back = DateToTime(other);
        EXPECT_GE(back, now + distance - 1);
        EXPECT_LE(back, now + distance + 1);
    }
}

TEST(DateValue, GivesTheCalendarTimeOfOddValues)
{
    EXPECT_EQ(DateToTime({}), 0);
    EXPECT_EQ(DateToTime(Valid(0.0)), 0);
    EXPECT_NEAR(static_cast<double>(DateToTime({5.0, eDateInvalid})), static_cast<double>(time(nullptr)), 2);
    EXPECT_NEAR(static_cast<double>(DateToTime({5.0, eDateNull})), static_cast<double>(time(nullptr)), 2);
    EXPECT_EQ(DateToTime(Valid(-600000.0)), 0) << "never negative";
    const auto furthest = static_cast<double>(time(nullptr)) + 2147483647.0;
    EXPECT_NEAR(static_cast<double>(DateToTime(Valid(kDateMax))), furthest, 2)
        << "no further than 32 bits of seconds";
    DateToTime(Valid(std::numeric_limits<double>::quiet_NaN()));
}

TEST(DateValue, NeverEndsAWholeMinuteOnSecondOne)
{
    const DateValue now = DateFromTime(time(nullptr));
    const double today = std::floor(now.mDate);
    int early = 0; // where a second begins between two looks at the clock
    for (int minute = 0; minute < 1440; ++minute)
    {
        const time_t second = DateToTime(Valid(today + minute / 1440.0)) % 60;
        ASSERT_NE(second, 1) << minute;
        early += second == 0 ? 0 : 1;
    }
    EXPECT_LE(early, 5);
}

// The run-time library refuses negative times on one system and shows them on the other.
TEST(DateValue, OfATimeThatTheLibraryRefusesPrintsAsInvalid)
{
    const DateValue value = DateFromTime(std::numeric_limits<time_t>::max());
    EXPECT_EQ(value.mStatus, eDateInvalid);
    EXPECT_EQ(FormatLocalDate(value), L"{invalid date - 2958466.000000 }");
}

TEST(DateFormat, ShowsTheLocalDateOrWhyItCannot)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::pair<DateValue, const wchar_t*> kCases[] = {
        {{}, L""},
        {{5.0, eDateNull}, L""},
        {Valid(99.999), L"[bad date value - 99.999000]"},
        {Valid(-1.25), L"[bad date value - -1.250000]"},
        {{1.0, eDateInvalid}, L"[bad date value - 1.000000]"}, // the first test of the two
        {{100.0, eDateInvalid}, L"{invalid date - 100.000000 }"},
        {Valid(2958465.5), L"{invalid date - 2958465.500000 }"},
        {Valid(nan), L"{invalid date - nan }"},
    };
    for (const auto& [value, expected] : kCases)
        EXPECT_EQ(FormatLocalDate(value), expected);

    for (const double shown : {100.0, 2958465.0}) // the first and the last; how, stands in the report's test
        EXPECT_NE(FormatLocalDate(Valid(shown)).Find(L"00:00:00"), -1) << shown;
}

TEST(DateFormat, ShowsTheMailForm)
{
    const std::pair<DateValue, const wchar_t*> kCases[] = {
        {Valid(2.0), L"Mon, 1 Jan 1900 00:00:00 "},
        {Valid(-1.25), L"Fri, 29 Dec 1899 06:00:00 "},
        {Valid(36585.75), L"Tue, 29 Feb 2000 18:00:00 "},
        {Valid(2958465.0), L"Fri, 31 Dec 9999 00:00:00 "},
        {{}, L"???, -1 ??? -1 -1:-1:-1 "},
    };
    const std::wstring days = L"SunMonTueWedThuFriSat", months = L"JanFebMarAprMayJunJulAugSepOctNovDec";
    for (int day = 0; day < 365; ++day) // of 2023, which began on a Sunday
    {
        const DateValue date{44927.0 + day, eDateValid};
        const ZTString text = FormatRFC822Date(date);
        EXPECT_EQ(text.Left(3), days.substr(static_cast<std::size_t>(day % 7 * 3), 3).c_str()) << day;
        EXPECT_NE(text.Find(months.substr(static_cast<std::size_t>(date.GetMonth() * 3 - 3), 3).c_str()), -1);
    }
    // The zone of the moment stands in the report's test.
    for (const auto& [value, expected] : kCases)
    {
        const ZTString text = FormatRFC822Date(value);
        EXPECT_EQ(text.Left(text.GetLength() - 5), expected);
    }
}

TEST(DateFormat, ShowsTheIsoForm)
{
    EXPECT_EQ(FormatISO8601Date(Valid(2.0)), L"1900-01-01T00:00:00");
    EXPECT_EQ(FormatISO8601Date(Valid(kDateMin)), L"0100-01-01T00:00:00");
    EXPECT_EQ(FormatISO8601Date(Valid(36585.99998)), L"2000-02-29T23:59:58");
    EXPECT_EQ(FormatISO8601Date({}), L"-001--1--1T-1:-1:-1");
}

TEST(DateFormat, ShowsTheTimestampOfADatabaseInUtc)
{
    EXPECT_EQ(FormatODBCDate(0), L"{ts '1970-01-01 00:00:00' }");
    EXPECT_EQ(FormatODBCDate(951868799), L"{ts '2000-02-29 23:59:59' }");
    EXPECT_EQ(FormatODBCDate(std::numeric_limits<time_t>::max()), L"");
}
