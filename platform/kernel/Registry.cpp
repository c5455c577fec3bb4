// SPDX-License-Identifier: MIT
#include "platform/kernel/Handle.h"
#include "platform/kernel/Locale.h"
#include "text/Unicode.h"
#include "winreg.h"

#include <unicode/uloc.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cwchar>

using namespace platform;

namespace
{

class LocaleKey : public HandleObject
{
};

// "de-de;German (Germany)" for de_DE; empty for a name that ICU cannot read. Scripts are part of the
// published tags but for Chinese.
std::wstring LocaleText(const char* locale)
{
    std::array<char, ULOC_FULLNAME_CAPACITY> tag = {};
    std::array<UChar, 256> english = {};
    UErrorCode error = U_ZERO_ERROR;
    uloc_toLanguageTag(locale, tag.data(), tag.size() - 1, FALSE, &error);
    uloc_getDisplayName(locale, "en", english.data(), english.size() - 1, &error);
    if (U_FAILURE(error))
        return {};
    std::string text = tag.data();
    std::ranges::transform(text, text.begin(), [](unsigned char letter) { return std::tolower(letter); });
    return text::FromUtf8(text + ';') + text::FromUtf16(english.data());
}

std::wstring LocaleText(DWORD id)
{
    if (id == LOCALE_CUSTOM_DEFAULT)
    {
        const std::string name = LocaleWithoutNumber();
        return name.empty() ? std::wstring() : LocaleText(name.c_str());
    }
    std::array<char, ULOC_FULLNAME_CAPACITY> locale = {};
    UErrorCode error = U_ZERO_ERROR;
    uloc_getLocaleForLCID(id, locale.data(), locale.size() - 1, &error);
    if (U_FAILURE(error) || uloc_getLCID(locale.data()) != id)
        return {};
    const std::string name = locale.data();
    const bool isChinese = name.starts_with("zh_Han"); // Hans, Hant
    std::wstring text = LocaleText(isChinese ? ("zh" + name.substr(7)).c_str() : name.c_str());
    // The published tags have Windows' own names of these two languages.
    if (text.starts_with(L"qu-"))
        text.insert(2, L"z");
    if (text.starts_with(L"ckb-"))
        text.replace(0, 3, L"ku");
    return text;
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
