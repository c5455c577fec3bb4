// SPDX-License-Identifier: MIT
#include "platform/kernel/Handle.h"
#include "text/Unicode.h"
#include "winreg.h"

#include <unicode/uloc.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cwchar>

namespace
{

class LocaleKey : public HandleObject
{
};

// A locale's name without a script that goes without saying: zh_CN for zh_Hans_CN, but sr_Latn_RS.
std::string ShortName(const char* locale)
{
    std::array<char, ULOC_FULLNAME_CAPACITY> language = {};
    std::array<char, ULOC_FULLNAME_CAPACITY> country = {};
    std::array<char, ULOC_FULLNAME_CAPACITY> full = {};
    std::array<char, ULOC_FULLNAME_CAPACITY> guessed = {};
    UErrorCode error = U_ZERO_ERROR;
    uloc_getLanguage(locale, language.data(), language.size(), &error);
    uloc_getCountry(locale, country.data(), country.size(), &error);
    if (country.front() == '\0')
        return locale;
    std::string name = std::string(language.data()) + '_' + country.data();
    uloc_addLikelySubtags(locale, full.data(), full.size(), &error);
    uloc_addLikelySubtags(name.c_str(), guessed.data(), guessed.size(), &error);
    return U_SUCCESS(error) && full == guessed ? name : locale;
}

// "de-de;German (Germany)" for 0x0407; empty for a number that is no locale's.
std::wstring LocaleText(DWORD id)
{
    std::array<char, ULOC_FULLNAME_CAPACITY> locale = {};
    UErrorCode error = U_ZERO_ERROR;
    uloc_getLocaleForLCID(id, locale.data(), locale.size(), &error);
    if (U_FAILURE(error) || uloc_getLCID(locale.data()) != id)
        return {};
    const std::string name = ShortName(locale.data());
    std::array<char, ULOC_FULLNAME_CAPACITY> tag = {};
    uloc_toLanguageTag(name.c_str(), tag.data(), tag.size(), FALSE, &error);
    std::array<UChar, 256> english = {};
    uloc_getDisplayName(name.c_str(), "en", english.data(), english.size() - 1, &error);
    std::array<char, 4 * english.size()> narrow = {};
    u_strToUTF8(narrow.data(), narrow.size(), nullptr, english.data(), -1, &error);
    if (U_FAILURE(error))
        return {};
    std::string text = tag.data();
    std::ranges::transform(text, text.begin(), [](unsigned char letter) { return std::tolower(letter); });
    return text::FromUtf8(text + ';' + narrow.data());
}

// The text of a value by its name, the locale's number as "%04X" writes it.
std::wstring ValueText(const wchar_t* name)
{
    const auto id = static_cast<DWORD>(std::wcstoul(name, nullptr, 16));
    std::array<wchar_t, 9> written = {};
    std::swprintf(written.data(), written.size(), L"%04X", id);
    return wcscasecmp(name, written.data()) == 0 ? LocaleText(id) : std::wstring();
}

} // namespace

LSTATUS RegCreateKeyW(HKEY key, LPCWSTR name, PHKEY result)
{
    constexpr wchar_t kLocaleKey[] = L"SOFTWARE\\Classes\\MIME\\Database\\Rfc1766";
    if (key != HKEY_LOCAL_MACHINE || name == nullptr || wcscasecmp(name, kLocaleKey) != 0)
        return ERROR_FILE_NOT_FOUND;
    *result = static_cast<HKEY>(MakeHandle(std::make_shared<LocaleKey>()));
    return ERROR_SUCCESS;
}

LSTATUS RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD, LPDWORD type, BYTE* data, LPDWORD size)
{
    if (ObjectOf<LocaleKey>(key) == nullptr)
        return ERROR_INVALID_HANDLE;
    if (data != nullptr && size == nullptr)
        return ERROR_INVALID_PARAMETER;
    const std::wstring text = name == nullptr ? std::wstring() : ValueText(name);
    if (text.empty())
        return ERROR_FILE_NOT_FOUND;
    if (type != nullptr)
        *type = REG_SZ;
    if (size == nullptr)
        return ERROR_SUCCESS;
    const auto needed = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    const bool fits = *size >= needed;
    *size = needed;
    if (data != nullptr && fits)
        std::copy_n(reinterpret_cast<const BYTE*>(text.c_str()), needed, data);
    return data == nullptr || fits ? ERROR_SUCCESS : ERROR_MORE_DATA;
}

LSTATUS RegCloseKey(HKEY key)
{
    return CloseHandleOf<LocaleKey>(key) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}
