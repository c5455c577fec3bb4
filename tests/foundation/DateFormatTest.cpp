// SPDX-License-Identifier: MIT
#include "foundation/DateValue.h"

#include <gtest/gtest.h>

TEST(DateFormat, ShowsTheLocalDateOrWhyItCannot)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::pair<DateValue, const wchar_t*> kCases[] = {
        {{}, L""},
        {{5.0, eDateNull}, L""},
        {DateValue{99.999, eDateValid}, L"[bad date value - 99.999000]"},
        {DateValue{-1.25, eDateValid}, L"[bad date value - -1.250000]"},
        {{1.0, eDateInvalid}, L"[bad date value - 1.000000]"}, // the first test of the two
        {{100.0, eDateInvalid}, L"{invalid date - 100.000000 }"},
        {DateValue{2958465.5, eDateValid}, L"{invalid date - 2958465.500000 }"},
        {DateValue{nan, eDateValid}, L"{invalid date - nan }"},
    };
    for (const auto& [value, expected] : kCases)
        EXPECT_EQ(FormatLocalDate(value), expected);

    tm april{};
    std::tie(april.tm_mday, april.tm_mon, april.tm_wday, april.tm_yday) = std::tuple(9, 3, 1, 98);
    tm last{};
    std::tie(last.tm_mday, last.tm_mon, last.tm_year, last.tm_wday) = std::tuple(31, 11, 8099, 5);
    for (const auto& [date, fields] : {std::pair(100.0, &april), {2958465.0, &last}})
    {
        wchar_t expected[128];
        std::wcsftime(expected, std::size(expected), L"%c", fields);
        EXPECT_EQ(FormatLocalDate(DateValue{date, eDateValid}), expected);
    }
}

TEST(DateFormat, ShowsTheMailForm)
{
    const std::pair<DateValue, const wchar_t*> kCases[] = {
        {DateValue{2.0, eDateValid}, L"Mon, 1 Jan 1900 00:00:00 "},
        {DateValue{-1.25, eDateValid}, L"Fri, 29 Dec 1899 06:00:00 "},
        {DateValue{36585.75, eDateValid}, L"Tue, 29 Feb 2000 18:00:00 "},
        {DateValue{2958465.0, eDateValid}, L"Fri, 31 Dec 9999 00:00:00 "},
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
    EXPECT_EQ(FormatISO8601Date(DateValue{2.0, eDateValid}), L"1900-01-01T00:00:00");
    EXPECT_EQ(FormatISO8601Date(DateValue{kDateMin, eDateValid}), L"0100-01-01T00:00:00");
    EXPECT_EQ(FormatISO8601Date(DateValue{36585.99998, eDateValid}), L"2000-02-29T23:59:58");
    EXPECT_EQ(FormatISO8601Date({}), L"-001--1--1T-1:-1:-1");
}

TEST(DateFormat, ShowsTheTimestampOfADatabaseInUtc)
{
    EXPECT_EQ(FormatODBCDate(0), L"{ts '1970-01-01 00:00:00' }");
    EXPECT_EQ(FormatODBCDate(951868799), L"{ts '2000-02-29 23:59:59' }");
    EXPECT_EQ(FormatODBCDate(std::numeric_limits<time_t>::max()), L"");
}
