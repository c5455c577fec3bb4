// SPDX-License-Identifier: MIT
#include "libraries/kelvane/Text.h"

#include "foundation/Kelvane.h"
#include "text/Unicode.h"

#include <climits>

namespace kelvane
{

std::string Narrow(std::wstring_view text)
{
    return text::ToUtf8(text);
}

ZTString Widen(std::string_view text)
{
    const std::wstring wide = text::FromUtf8(text);
    return ZTString(wide.data(), static_cast<int>(wide.size()));
}

} // namespace kelvane

StrConverter::StrConverter(const wchar_t* text) : mNarrow(kelvane::Narrow(kelvane::ViewOf(text))) {}

StrConverter::operator const char*() const
{
    return mNarrow.c_str();
}

unsigned long wtodw(const wchar_t* text)
{
    constexpr std::wstring_view kBlanks = L" \t\r\n";
    std::wstring_view rest = kelvane::ViewOf(text);
    rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
    rest.remove_suffix(rest.size() - (rest.find_last_not_of(kBlanks) + 1));
    unsigned base = 10;
    if (rest.starts_with(L"0x") || rest.starts_with(L"0X"))
    {
        base = 16;
        rest.remove_prefix(2);
    }
    constexpr std::wstring_view kDigits = L"0123456789abcdef";
    std::uint64_t number = rest.empty() ? UINT32_MAX : 0;
    for (const wchar_t character : rest)
    {
        const wchar_t folded = character >= L'A' && character <= L'F'
                                   ? static_cast<wchar_t>(character + (L'a' - L'A'))
                                   : character;
        const std::size_t digit = kDigits.substr(0, base).find(folded);
        if (digit == std::wstring_view::npos)
            return UINT32_MAX;
        number = std::min<std::uint64_t>(number * base + digit, UINT32_MAX);
    }
    return static_cast<unsigned long>(number);
}

ZTString GetStringFromSet(const std::set<ZTString>& texts, const wchar_t* separator)
{
    ZTString joined;
    for (const ZTString& text : texts)
    {
        if (&text != &*texts.begin())
            joined += separator;
        joined += text;
    }
    return joined;
}

std::int64_t FILETIMEToTimeT(FILETIME time)
{
    constexpr std::int64_t kTicksPerSecond = 10'000'000;
    constexpr std::int64_t kTicksTo1970 = 116'444'736'000'000'000;
    const std::uint64_t value = (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
    // The system's own times stay far below the sign bit.
    const std::int64_t ticks =
        static_cast<std::int64_t>(std::min<std::uint64_t>(value, INT64_MAX)) - kTicksTo1970;
    return ticks / kTicksPerSecond - (ticks % kTicksPerSecond < 0 ? 1 : 0);
}
