// SPDX-License-Identifier: MIT
#include "libraries/oriska/FormatSpec.h"

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

} // namespace

bool ParseFormatSpec(std::wstring_view text, FormatSpec& spec)
{
    if (text.empty())
        return true;
    for (; text.starts_with(L'-') || text.starts_with(L'0'); text.remove_prefix(1))
        (text.front() == L'-' ? spec.leftAlign : spec.zeroFill) = true;
    spec.width = TakeSize(text);
    if (text.starts_with(L'.'))
    {
        text.remove_prefix(1);
        spec.precision = TakeSize(text);
    }
    constexpr std::wstring_view kConversions = L"duXsSf";
    if (text.size() != 1 || kConversions.find(text.front()) == std::wstring_view::npos)
        return false;
    spec.conversion = text.front();
    return true;
}
