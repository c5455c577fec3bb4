// SPDX-License-Identifier: MIT
#include "text/SafeToShow.h"
#include "text/Unicode.h"

#include <gtest/gtest.h>

TEST(Unicode, EachByteSurvivesTheWayToWideTextAndBack)
{
    const std::pair<std::string, std::wstring> rows[] = {
        {"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80",
         L"\x7F\x80\x7FF\x800"}, // the shortest and longest of their lengths
        {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", L"\u00E9\u20AC\U0001F600"},
        {"\xEF\xBF\xBF\xF4\x8F\xBF\xBF", L"\uFFFF\U0010FFFF"},
        {std::string("a\0b", 3), std::wstring(L"a\0b", 3)},
        {"a\xE9z", L"a\xDCE9z"},                           // Latin-1
        {"\xC3", L"\xDCC3"},                               // cut
        {"\xE6\x97z", L"\xDCE6\xDC97z"},                   // cut in the middle
        {"\xC0\x80", L"\xDCC0\xDC80"},                     // overlong
        {"\xE0\x80\x80", L"\xDCE0\xDC80\xDC80"},           // overlong
        {"\xED\xA0\x80", L"\xDCED\xDCA0\xDC80"},           // a surrogate
        {"\xED\xB2\x80", L"\xDCED\xDCB2\xDC80"},           // the escape itself
        {"\xF4\x90\x80\x80", L"\xDCF4\xDC90\xDC80\xDC80"}, // beyond Unicode
        {"\xFF", L"\xDCFF"},
    };
    for (const auto& [bytes, wide] : rows)
    {
        EXPECT_EQ(text::FromUtf8(bytes), wide) << bytes;
        EXPECT_EQ(text::ToUtf8(wide), bytes);
    }
    EXPECT_EQ(text::ToUtf8(L"a\xD83Dz\xDC7F\xDD00"), "a\xEF\xBF\xBDz\xEF\xBF\xBD\xEF\xBF\xBD")
        << "no escapes";
}

TEST(Unicode, AstralCharactersAreTwoUnitsOfUtf16)
{
    const std::pair<std::wstring, std::u16string> rows[] = {
        {L"a\u20AC", u"a\u20AC"},
        {L"\U0001F600", u"\xD83D\xDE00"},
        {L"\U0010FFFF\U00010000", u"\xDBFF\xDFFF\xD800\xDC00"},
        {L"\xD83D", u"\xD83D"}, // alone
        {L"\xDE00\xD83D", u"\xDE00\xD83D"},
        {std::wstring(L"a\0b", 3), std::u16string(u"a\0b", 3)},
    };
    for (const auto& [wide, units] : rows)
    {
        EXPECT_EQ(text::ToUtf16(wide), units);
        EXPECT_EQ(text::FromUtf16(units), wide);
    }
}

TEST(SafeToShow, LeavesNothingThatATerminalObeysOrThatTurnsAReadersEye)
{
    const std::pair<std::wstring, std::wstring> rows[] = {
        {L"gr\u00FC\u00DF \u65E5 \U0001F600 \u0627\u200C\u200D",
         L"gr\u00FC\u00DF \u65E5 \U0001F600 \u0627\u200C\u200D"},
        {std::wstring(L"\0\x1B[2J\x7F\x80\x9B"
                      L"31m\x9F\xA0",
                      13),
         L"  [2J   31m \xA0"},
        {L"two\r\nlines\t.", L"two  lines ."},
        {L"\u061C\u200E\u200F\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069.", L"            ."},
        {L"\u2028\u2029\uFEFF\u200B\u2060.", L"     ."},
        {L"a\xDCE9z\xD83D", L"a\xFFFDz\xFFFD"}, // a byte that was not UTF-8, half of a pair
    };
    for (const auto& [shown, safe] : rows)
        EXPECT_EQ(text::SafeToShow(shown), safe);
    EXPECT_EQ(text::SafeToShow(L"a\tb\r\n\u202E", L"\t\n"), L"a\tb \n ");
}
