// SPDX-License-Identifier: MIT
#include "platform/kernel/Locale.h"
#include "tests/support/TestFolder.h"
#include "text/Unicode.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <array>

using namespace platform;

TEST(Locale, HasTheNumberThatWindowsGivesIt)
{
    const std::string kLong(400, 'a');
    const std::pair<const char*, LCID> rows[] = {
        {"", 0x0409},
        {"POSIX", 0x0409},
        {"C.UTF-8", 0x0409},
        {"de_DE@euro", 0x0407},
        {"de_AT.ISO-8859-1", 0x0C07},
        {"zh_TW", 0x0404},
        {"nb_NO", 0x0414},
        {"sr_RS", 0x281A},
        {"sr_RS@latin", 0x241A},
        {"xx_YY", LOCALE_CUSTOM_DEFAULT},
        {"en_DK.UTF-8", LOCALE_CUSTOM_DEFAULT},
        {"de_BE", LOCALE_CUSTOM_DEFAULT}, // the language alone has one
        {"ca_ES@valencia", 0x0803},
        {"ks_IN@devanagari", 0x0860},
        {"tl_PH", 0x0464},
        {"az_AZ", 0x042C},
        {"xh_ZA", 0x0434},
        {"uz_UZ@cyrillic", 0x0843},
        {"sr_ME", 0x301A},
        {"tt_RU@iqtelif", LOCALE_CUSTOM_DEFAULT}, // Windows has it in Cyrillic alone
        {"syr", LOCALE_CUSTOM_DEFAULT},
        {kLong.c_str(), LOCALE_CUSTOM_DEFAULT},
    };
    for (const auto& [name, id] : rows)
        EXPECT_EQ(LcidOfLocale(name), id) << name;
}

TEST(Locale, UsersIsTheFirstVariableThatIsSet)
{
    const Variable lang("LANG", "en_GB.UTF-8");
    const Variable type("LC_NUMERIC", nullptr);
    const Variable all("LC_ALL", "");
    EXPECT_EQ(GetUserDefaultLCID(), 0x0809U);
    const Variable french("LC_NUMERIC", "fr_FR.UTF-8");
    EXPECT_EQ(GetUserDefaultLCID(), 0x040CU);
    const Variable german("LC_ALL", "de_DE");
    EXPECT_EQ(GetUserDefaultLCID(), 0x0407U);
}

TEST(Locale, SystemsIsReadFromItsFile)
{
    EXPECT_EQ(LocaleOfFile("#  File generated\nLANG=de_DE.UTF-8\n"), "de_DE.UTF-8");
    EXPECT_EQ(LocaleOfFile("LANG=\"fr_FR.UTF-8\"\nLC_TIME=en_GB\n"), "fr_FR.UTF-8");
    EXPECT_EQ(LocaleOfFile("LANG='en_GB' \r\n"), "en_GB");
    EXPECT_EQ(LocaleOfFile("LANG=en_GB\nLC_ALL=pt_BRx"), "pt_BRx");
    EXPECT_EQ(LocaleOfFile("LANG=\"\"\n"), "");
    EXPECT_EQ(LocaleOfFile("LANGUAGE=de:en\nLANG=\n"), "");
    EXPECT_EQ(LocaleOfFile(""), "");
}

// Wine has the key without values.
TEST(Locale, RegistryNamesItByItsShortTagWithTheRegistrysSizesAndErrors)
{
    const Variable lang("LC_ALL", "be_BY.UTF-8@latin");
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Other", &key), ERROR_FILE_NOT_FOUND);
    ASSERT_EQ(RegCreateKeyW(HKEY_LOCAL_MACHINE, L"software\\classes\\MIME\\Database\\Rfc1766", &key),
              ERROR_SUCCESS);
    std::array<wchar_t, 500> text = {};
    auto* data = reinterpret_cast<BYTE*>(text.data());
    const auto query = [&](const wchar_t* name, BYTE* to, DWORD& size)
    { return RegQueryValueExW(key, name, nullptr, nullptr, to, &size); };
    const std::pair<const wchar_t*, std::wstring> rows[] = {
        {L"0409", L"en-us;English (United States)"},
        {L"281A", L"sr-cyrl-rs;Serbian (Cyrillic, Serbia)"},
        {L"0C00", L"be-latn-by;Belarusian (Latin, Belarus)"},
        {L"0C6B", L"quz-pe;Quechua (Peru)"},
        {L"0492", L"ku-arab-iq;Central Kurdish (Arabic, Iraq)"},
        {L"0804", L"zh-cn;Chinese (China)"},
        {L"241A", L"sr-latn-rs;Serbian (Latin, Serbia)"},
        {L"241a", L"sr-latn-rs;Serbian (Latin, Serbia)"},
        {L"0009", L"en;English"},
    };
    DWORD size = 0; // bytes
    for (const auto& [name, expected] : rows)
    {
        size = sizeof text;
        EXPECT_EQ(query(name, data, size), ERROR_SUCCESS);
        EXPECT_EQ(text.data(), expected);
        EXPECT_EQ(size, (expected.size() + 1) * sizeof(wchar_t));
        DWORD small = size - 1;
        EXPECT_EQ(query(name, data, small), ERROR_MORE_DATA);
        EXPECT_EQ(small, size);
    }
    for (const wchar_t* name : {L"409", L"FFFF", L"7C09", L"x", L""})
        EXPECT_EQ(query(name, data, size), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
}

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
    const std::string part = "a\u00E9\u3042\U0001F600b"; // an odd length: any character may end a piece
    constexpr int kParts = 5000;
    const std::wstring wide = text::FromUtf8(Repeated(part, kParts));
    for (const char* const locale : {"en_US.UTF-8", "de_DE.ISO-8859-1", "ja_JP.eucJP", "zh_CN.GB18030"})
    {
        const Variable variable("LC_ALL", locale);
        std::string expected = Repeated(ToNarrow(text::FromUtf8(part)), kParts);
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
