// SPDX-License-Identifier: MIT
// A printf conversion taken apart, so that nothing unchecked ever decides how a value is read.
#pragma once

#include <string_view>

constexpr int kFormatSizeMax = 500;

struct FormatSpec
{
    bool leftAlign = false;
    bool zeroFill = false;
    int width = 0;
    int precision = -1;     // -1: not given
    wchar_t conversion = 0; // one of d u X s S f, 0: the natural form of the value
};

// Reads flags, width, precision and conversion of `text`, which has no "%". False when a text of the product
// does not use it; an empty text is the natural form.
bool ParseFormatSpec(std::wstring_view text, FormatSpec& spec);
