// SPDX-License-Identifier: MIT
#include "libraries/kelvane/Numbers.h"

#include "foundation/Kelvane.h"

#include <array>
#include <charconv>
#include <cmath>

namespace
{

// Windows formats no more digits after the point.
constexpr int kMostDigits = 9;
// The largest double has 309 digits before the point.
constexpr std::size_t kLongestNumber = 1 + 309 + 1 + kMostDigits;

} // namespace

ZTString FormatFloatingPointNum(double value, bool, int)
{
    if (!std::isfinite(value))
    {
        ZTString text;
        text.Format(L"{0:f}", value);
        return text;
    }
    std::array<char, kLongestNumber> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, kMostDigits);
    std::string number(text.data(), end.ptr);
    // Trailing zeros are not the number's own digits.
    int digits = kMostDigits;
    for (; digits > 0 && number.back() == '0'; --digits)
        number.pop_back();
    if (digits == 0)
        number.pop_back(); // the point
    if (number == "-0")
        number = "0";
    return kelvane::ShowDecimal(number, digits);
}
