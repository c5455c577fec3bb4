// SPDX-License-Identifier: MIT
#include "platform/kernel/Locale.h"
#include "tests/support/TestFolder.h"

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

// Wine has the key without values.
TEST(Locale, RegistryNamesItByItsShortTag)
{
    const Variable lang("LC_ALL", "be_BY.UTF-8@latin");
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyW(HKEY_LOCAL_MACHINE, L"software\\classes\\MIME\\Database\\Rfc1766", &key),
              ERROR_SUCCESS);
    const std::pair<const wchar_t*, std::wstring> rows[] = {
        {L"0409", L"en-us;English (United States)"},
        {L"281A", L"sr-cyrl-rs;Serbian (Cyrillic, Serbia)"},
        {L"0C00", L"be-latn-by;Belarusian (Latin, Belarus)"},
        {L"0C6B", L"quz-pe;Quechua (Peru)"},
        {L"0492", L"ku-arab-iq;Central Kurdish (Arabic, Iraq)"},
        {L"0804", L"zh-cn;Chinese (China)"},
        {L"241a", L"sr-latn-rs;Serbian (Latin, Serbia)"},
        {L"0009", L"en;English"},
        {L"7C09", L""},
        {L"x", L""},
    };
    for (const auto& [name, expected] : rows)
    {
        std::array<wchar_t, 500> text = {};
        DWORD size = sizeof text;
        RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &size);
        EXPECT_EQ(text.data(), expected);
    }
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
