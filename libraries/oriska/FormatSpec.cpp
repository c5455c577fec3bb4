// SPDX-License-Identifier: MIT
#include "libraries/oriska/FormatSpec.h"

#include "foundation/Oriska.h"

#include <algorithm>

namespace
{

// Takes the digits at the front of `text`; sizes beyond the limit are cut down to it.
int TakeSize(std::wstring_view& text)
{
    int size = 0;
    std::size_t digits = 0;
    for (; digits < text.size() && text[digits] >= L'0' && text[digits] <= L'9'; ++digits)
        size = std::min(size * 10 + static_cast<int>(text[digits] - L'0'), kFormatSizeMax);
    text.remove_prefix(digits);
    return size;
}

bool TakeFlag(wchar_t character, FormatSpec& spec)
{
    switch (character)
    {
    case L'-':
        return spec.leftAlign = true;
    case L'+':
        return spec.plusSign = true;
    case L' ':
        return spec.blankSign = true;
    case L'0':
        return spec.zeroFill = true;
    case L'#':
        return spec.alternate = true;
    default:
        return false;
    }
}

void TakeLength(std::wstring_view& text)
{
    if (text.size() < 2)
        return;
    constexpr std::wstring_view kLengths[] = {L"hh", L"h", L"ll", L"l", L"I64", L"I32", L"j", L"z", L"t"};
    for (const std::wstring_view length : kLengths)
        if (text.starts_with(length))
            return text.remove_prefix(length.size());
}

} // namespace

bool ParseFormatSpec(std::wstring_view text, FormatSpec& spec)
{
    if (text.empty())
        return true;
    while (!text.empty() && TakeFlag(text.front(), spec))
        text.remove_prefix(1);
    spec.width = TakeSize(text);
    if (text.starts_with(L'.'))
    {
        text.remove_prefix(1);
        spec.precision = TakeSize(text);
    }
    TakeLength(text);
    if (text.size() != 1)
        return false;
    spec.conversion = text.front();
    return true;
}
