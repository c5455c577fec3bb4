// SPDX-License-Identifier: MIT
#include "platform/net/LdapText.h"

#include <cstdint>
#include <cstring>

#include <unicode/utf8.h>

// The macros of ICU narrow without saying so.
#pragma GCC diagnostic ignored "-Wconversion"

namespace
{

constexpr char32_t kReplacement = 0xFFFD;
constexpr std::size_t kLongestCause = 400;  // characters
constexpr std::size_t kLongestSequence = 4; // bytes of one character

// What would break the line, or let a server write over or turn around what stands before it.
bool IsUnprintable(wchar_t character)
{
    const auto point = static_cast<char32_t>(character);
    return point < 0x20 || (point >= 0x7f && point < 0xa0) || point == 0x061c || point == 0x200e ||
           point == 0x200f || (point >= 0x2028 && point <= 0x202e) || (point >= 0x2066 && point <= 0x2069) ||
           point == 0xfeff;
}

} // namespace

std::string ToUtf8(std::wstring_view text)
{
    // Room for all at once: no shorter copy of a secret stays behind in memory.
    std::string bytes(text.size() * kLongestSequence, '\0');
    std::size_t length = 0;
    for (const wchar_t character : text)
    {
        auto point = static_cast<char32_t>(character);
        if (point > 0x10FFFF || U_IS_SURROGATE(point))
            point = kReplacement;
        U8_APPEND_UNSAFE(bytes.data(), length, point);
    }
    bytes.resize(length);
    return bytes;
}

std::size_t DecodeUtf8(std::string_view text, wchar_t* wide)
{
    std::size_t count = 0;
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t at = 0; at < length;)
    {
        UChar32 point = 0;
        U8_NEXT_OR_FFFD(text.data(), at, length, point);
        wide[count++] = static_cast<wchar_t>(point);
    }
    return count;
}

std::wstring FromUtf8(std::string_view text)
{
    std::wstring wide(text.size(), L'\0');
    wide.resize(DecodeUtf8(text, wide.data()));
    return wide;
}

std::wstring SafeToPrint(std::string_view text)
{
    std::wstring safe;
    for (const wchar_t character : FromUtf8(text))
        if (!IsUnprintable(character))
            safe += character;
        else if (!safe.empty() && safe.back() != L' ')
            safe += L' ';
    safe.erase(safe.find_last_not_of(L' ') + 1);
    safe.erase(0, safe.find_first_not_of(L' '));
    if (safe.size() > kLongestCause)
        safe.replace(kLongestCause, std::wstring::npos, L"...");
    return safe;
}

std::string CauseText(std::string text)
{
    if (text.size() > 1 && text[0] >= 'A' && text[0] <= 'Z' && text[1] >= 'a' && text[1] <= 'z')
        text[0] = static_cast<char>(text[0] - 'A' + 'a');
    return text;
}

Secret::Secret(std::wstring_view text) : mText(ToUtf8(text)) {}

Secret::~Secret()
{
    explicit_bzero(mText.data(), mText.capacity());
}
