// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include <gtest/gtest.h>

#include <cstdio>

static std::wstring Text(const wchar_t* format, const PlaceholderValues& values)
{
    const ZTString text = _StrFormat(format, values);
    return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
}

using Case = std::tuple<const wchar_t*, PlaceholderValues, const wchar_t*>;

static void Check(const std::vector<Case>& cases)
{
    for (const auto& [format, values, text] : cases)
        EXPECT_EQ(Text(format, values), text) << "format " << testing::PrintToString(format);
}

static_assert(std::is_trivially_copyable_v<PlaceholderValue>);

TEST(Format, GivesEachFormOfTheLanguage)
{
    const ZTString text(L"text");
    Check({
        {L"{0}|{1}|{2}", {text, L"wide", "narrow"}, L"text|wide|narrow"},
        {L"{0}|{1}|{2}", {-5, 7u, 18446744073709551615ull}, L"-5|7|18446744073709551615"},
        {L"{0:s}|{1:s}|{1:.2s}{1:.0s}", {text, L"wide"}, L"text|wide|wi"},
        {L"{0:S}", {"Grüße"}, L"Grüße"},
        {L"{0:d}|{0:u}", {-1}, L"-1|4294967295"},
        {L"{0:d}|{0:u}", {-1ll}, L"-1|18446744073709551615"},
        {L"{0:d}", {4294967295u}, L"-1"}, // signed in its own width, as printf reads it
        {L"{0:u}|{0}", {static_cast<unsigned char>(200)}, L"200|200"},
        {L"{0:f}|{0:0.1f}", {1.2}, L"1.200000|1.2"},
        {L"{0}|{1}", {0.1, -2.5}, L"0.1|-2.5"},
    });
}

TEST(Format, ReadsBracesAndIndices)
{
    Check({
        {nullptr, {}, L""},
        {L"{{invalid date - {0:f} }", {1.0}, L"{invalid date - 1.000000 }"},
        {L"{{0}", {1}, L"{0}"},
        {L"{{{0}}", {1}, L"{1}"}, // "{{", a placeholder, a lone "}"
        {L"}a}", {}, L"}a}"},
        {L"{}, {}, {}", {1, 2, 3}, L"1, 2, 3"},
        {L"{:04X} {:d}", {255, 255}, L"00FF 255"},
        {L"{1} {} {0} {}", {L"a", L"b", L"c", L"d"}, L"b b a d"}, // every placeholder moves the index on
        {L"{10} {11} never", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, L"10 @@@"},
        {L"{}", {}, L"@@@"},
        {L"{99999999999999999999999} never", {1}, L"@@@"},
        {L"{4294967296} never", {1}, L"@@@"}, // no index wraps round to an argument
        {L"{0", {1}, L"{0"},
        {L"{0:d", {1}, L"{0:d"},
        {L"{", {1}, L"{"},
        {L"{name} {-1} { 0}", {1}, L"{name} {-1} { 0}"},
        {L"{000}{0:}", {1}, L"11"},
    });
}

// What is undefined in printf, and what no text of the product asks for, shows the value in its natural form.
TEST(Format, ChecksASpecAgainstTheTypeOfItsValue)
{
    Check({
        {L"{0:s}|{0:S}|{0:f}|{0:n}|{0:x}|{0:+d}", {12}, L"12|12|12|12|12|12"},
        {L"{0:d}|{0:u}|{0:n}", {L"text"}, L"text|text|text"},
        {L"{0:d}|{0:s}|{0:g}", {1.5}, L"1.5|1.5|1.5"},
        {L"{0:*d}|{0:%}|{0:5}|{0:ud}|{0:.}|{0:-}|{0:ld}", {-5}, L"-5|-5|-5|-5|-5|-5|-5"},
        {L"{0:S}|{1:s}", {L"wide", "narrow"}, L"wide|narrow"},
        {L"[{0}{1}{0:5s}]",
         {static_cast<const wchar_t*>(nullptr), static_cast<const char*>(nullptr)},
         L"[     ]"},
        {L"{0:S}", {"\xFF"}, L"\xDCFF"},
        {L"{0:06f}|{1}",
         {-std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()},
         L"  -inf|nan"},
    });
}

TEST(Format, CutsSizesDownToTheirLimit)
{
    constexpr std::size_t kLimit = 500;
    EXPECT_EQ(Text(L"{0:99999999999d}", {5}), std::wstring(kLimit - 1, L' ') + L"5");
    EXPECT_EQ(Text(L"{0:-9999s}|", {L"a"}), L"a" + std::wstring(kLimit - 1, L' ') + L"|");
    EXPECT_EQ(Text(L"{0:.9999d}", {-1}), L"-" + std::wstring(kLimit - 1, L'0') + L"1");
    EXPECT_EQ(Text(L"{0:.9999f}", {std::numeric_limits<double>::max()}).size(), 309 + 1 + kLimit);
}

TEST(Format, MayTakeTheStringItWrites)
{
    ZTString text(L"x");
    text.Format(L"{0}{1}{0}", text, 1);
    EXPECT_EQ(text, L"x1x");
    text.Format(L"{0}{1}{2}{3}{4}{5}{6}{7}{8}{9}", 0, 1u, 2l, 3ul, 4ll, 5ull, 6.0, L"7", "8", text);
    EXPECT_EQ(text, L"012345678x1x");
    text.Format(L"none");
    EXPECT_EQ(text, L"none");
    EXPECT_EQ(Text(L"{0}", {ZTString(L"a\0b", 3)}), std::wstring(L"a\0b", 3)) << "a zero ends no string";
}

TEST(Format, AgreesWithPrintfOnEveryCombinationOfFlagsAndSizes)
{
    const auto compare = [](const std::string& spec, auto value)
    {
        char expected[128];
        // The length is what makes one table serve all integer types.
        const std::string length = std::is_floating_point_v<decltype(value)> ? "" : "ll";
        const std::string printfSpec = "%" + spec.substr(0, spec.size() - 1) + length + spec.back();
        std::snprintf(expected, sizeof expected, printfSpec.c_str(), value);
        const std::wstring format = L"{0:" + std::wstring(spec.begin(), spec.end()) + L"}";
        const std::wstring text = Text(format.c_str(), {value});
        EXPECT_EQ(std::string(text.begin(), text.end()), expected) << spec;
    };
    for (const std::string front : {"", "-", "0", "-0"})
        for (const std::string sizes : {"", "1", "12", ".0", ".3", "9.0", "9.3", "20.12", "1.20"})
        {
            for (const char conversion : {'d', 'u', 'X'})
                for (const long long value : {0LL, 1LL, -1LL, 123456LL, std::numeric_limits<long long>::min(),
                                              std::numeric_limits<long long>::max()})
                    compare(front + sizes + conversion, value);
            for (const double value : {0.0, -0.0, 1.0, -1.5, 0.00012345, 123456789.125, 1e15, 0.5, 2.5})
                compare(front + sizes + 'f', value);
        }
}

TEST(PlaceholderValue, FormatsIntoABufferOrTellsThatItCannot)
{
    const std::tuple<PlaceholderValue, const wchar_t*, int, int> kCases[] = {
        {12345, L"%d", 5, 5},  {12345, L"%d", 4, -1}, {12345, nullptr, 5, 5},
        {12345, L"%s", 5, -1}, {12345, L"d", 5, -1},  {12345, L"%", 5, 5},
        {L"", L"%s", 0, 0},    {"a", L"%3S", 5, 3},   {L"abc", L"%.2s", 5, 2},
    };
    for (const auto& [value, spec, capacity, expected] : kCases)
    {
        wchar_t out[6] = L"*****";
        EXPECT_EQ(value.Format(out, capacity, spec), expected);
        EXPECT_EQ(out[std::max(expected, 0)], expected == 5 ? L'\0' : L'*') << "wrote past its result";
    }
}
