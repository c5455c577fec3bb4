// SPDX-License-Identifier: MIT
// UTF-16 code units of a wide text and back, on systems whose wchar_t holds code units as on those whose
// wchar_t holds code points. Wherever units are counted or written, the text passes through here.
#pragma once

#include <cstddef>
#include <string>

// The code units of `length` characters. A lone surrogate stays as it is; what is no code point becomes
// U+FFFD.
inline std::u16string ToUtf16(const wchar_t* text, std::size_t length)
{
    std::u16string units;
    units.reserve(length);
    for (std::size_t at = 0; at < length; ++at)
    {
        const char32_t point = static_cast<char32_t>(text[at]);
        if (sizeof(wchar_t) == sizeof(char16_t) || point < 0x10000)
        {
            units.push_back(static_cast<char16_t>(point));
        }
        else if (point > 0x10FFFF)
        {
            units.push_back(u'\uFFFD');
        }
        else
        {
            units.push_back(static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10)));
            units.push_back(static_cast<char16_t>(0xDC00 + (point & 0x3FF)));
        }
    }
    return units;
}

// The wide text of `length` code units. A lone surrogate stays as it is.
inline std::wstring FromUtf16(const char16_t* units, std::size_t length)
{
    std::wstring text;
    text.reserve(length);
    for (std::size_t at = 0; at < length; ++at)
    {
        const bool pair = sizeof(wchar_t) > sizeof(char16_t) && (units[at] & 0xFC00) == 0xD800 &&
                          at + 1 < length && (units[at + 1] & 0xFC00) == 0xDC00;
        if (pair)
        {
            const int point = 0x10000 + ((units[at] & 0x3FF) << 10) + (units[at + 1] & 0x3FF);
            text.push_back(static_cast<wchar_t>(point));
            ++at;
        }
        else
        {
            text.push_back(static_cast<wchar_t>(units[at]));
        }
    }
    return text;
}
