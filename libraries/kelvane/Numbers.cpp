// SPDX-License-Identifier: MIT
#include "libraries/kelvane/Numbers.h"

#include "foundation/Kelvane.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace
{

// Windows formats no more digits behind the point.
constexpr int kMostDigits = 9;
// The largest double has 309 digits in front of the point.
constexpr std::size_t kLongestNumber = 1 + 309 + 1 + kMostDigits;

std::string Decimal(double value, int digits)
{
    std::array<char, kLongestNumber> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, digits);
    return {text.data(), end.ptr};
}

} // namespace

ZTString FormatFloatingPointNum(double value, bool grouping, int digits)
{
    if (!std::isfinite(value))
    {
        ZTString text;
        text.Format(L"{0:f}", value);
        return text;
    }
    int shown = digits < 0 ? kMostDigits : std::min(digits, kMostDigits);
    std::string number = Decimal(value, shown);
    // Trailing zeros are not the number's own digits.
    for (; digits < 0 && shown > 0 && number.back() == '0'; --shown)
        number.pop_back();
    if (shown == 0 && number.back() == '.')
        number.pop_back();
    if (number.find_first_not_of("-0.") == std::string::npos && number.front() == '-')
        number.erase(0, 1);
    return kelvane::ShowDecimal(number, shown, grouping);
}
