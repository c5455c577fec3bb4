// SPDX-License-Identifier: MIT
// A printf conversion taken apart, so that nothing unchecked ever decides how a value is read.
#pragma once

#include <string_view>

struct FormatSpec
{
    bool leftAlign = false;
    bool plusSign = false;
    bool blankSign = false;
    bool zeroFill = false;
    bool alternate = false;
    int width = 0;
    int precision = -1;     // -1: not given
    wchar_t conversion = 0; // 0: the natural form of the value

    // Whether the conversion is the natural form or one of a set.
    bool IsOneOf(std::wstring_view conversions) const
    {
        bool found = conversion == 0;
        for (const wchar_t candidate : conversions)
            found |= candidate == conversion;
        return found;
    }
};

// Reads flags, width, precision, length and conversion of `text`, which has no "%". False when it is no
// conversion; an empty text is the natural form.
bool ParseFormatSpec(std::wstring_view text, FormatSpec& spec);
