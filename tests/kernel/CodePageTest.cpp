// SPDX-License-Identifier: MIT
#include "tests/support/TestFolder.h"

#include <windows.h>

#include <gtest/gtest.h>

static std::string ToNarrow(const std::wstring& wide)
{
    const int length = static_cast<int>(wide.size());
    const int size = WideCharToMultiByte(CP_ACP, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, wide.data(), length, narrow.data(), size, nullptr, nullptr),
              size);
    return narrow;
}

TEST(CodePage, AnsiIsTheCharacterSetOfTheUsersLocale)
{
    const std::tuple<const char*, const wchar_t*, const char*> rows[] = {
        {"en_US.UTF-8", L"\u00E9\U0001F600", "\xC3\xA9\xF0\x9F\x98\x80"},
        {"de_DE.ISO-8859-1", L"\u00E9\u20AC", "\xE9?"},
        {"de_DE.ISO-8859-15@euro", L"\u20AC", "\xA4"},
        {"ru_RU.KOI8-R", L"\u0430\u00E9", "\xC1?"},
        {"ja_JP.eucJP", L"\u3042", "\xA4\xA2"},
        {"de_DE.ISO-8859-1", L"a\U0001F600b", "a??b"}, // two units
        {"C", L"a\u00E9", "a?"},
        {"", L"\u00FC\u20AC", "\xC3\xBC\xE2\x82\xAC"}, // none set
        {"xx_YY", L"\u00FC", "\xC3\xBC"},              // not there, and names no set
        {"xx_YY.ISO-8859-15", L"\u20AC", "\xA4"},      // not there
        {"xx_YY.no-such-set", L"a\u00E9", "a?"},
    };
    for (const auto& [locale, wide, narrow] : rows)
    {
        const Variable variable("LC_ALL", locale);
        EXPECT_EQ(ToNarrow(wide), narrow) << locale;
    }
}

TEST(CodePage, LongTextsGiveWhatTheirPartsGive)
{
    const std::wstring part = L"a\u00E9\u3042\U0001F600b"; // an odd length: any character may end a piece
    constexpr int kParts = 5000;
    std::wstring wide;
    for (int i = 0; i < kParts; ++i)
        wide += part;
    for (const char* const locale : {"en_US.UTF-8", "de_DE.ISO-8859-1", "ja_JP.eucJP", "zh_CN.GB18030"})
    {
        const Variable variable("LC_ALL", locale);
        std::string expected = Repeated(ToNarrow(part), kParts);
        EXPECT_TRUE(ToNarrow(wide) == expected) << locale;

        const int room = static_cast<int>(expected.size()) - 1;
        const int length = static_cast<int>(wide.size());
        EXPECT_EQ(
            WideCharToMultiByte(CP_ACP, 0, wide.data(), length, expected.data(), room, nullptr, nullptr), 0)
            << locale;
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    }
}

TEST(CodePage, LengthsAndRoomFollowTheRules)
{
    char narrow[8] = {};
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"ab", -1, narrow, 8, nullptr, nullptr), 3)
        << "with the terminator";
    EXPECT_STREQ(narrow, "ab");
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"ab", 0, narrow, 8, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(WideCharToMultiByte(1252, 0, L"ab", -1, narrow, 8, nullptr, nullptr), 0);
}
