// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include "libraries/oriska/FormatSpec.h"
#include "text/Unicode.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace
{

// Adds a sign or base, zeros and the text itself in a field of the conversion's width.
template <typename Character>
void AppendField(ZTString& out, std::string_view prefix, std::size_t zeros,
                 std::basic_string_view<Character> text, const FormatSpec& spec, bool zeroFill)
{
    const std::size_t size = prefix.size() + zeros + text.size();
    const auto width = static_cast<std::size_t>(spec.width);
    std::size_t fill = width > size ? width - size : 0;
    const int newLength = out.GetLength() + static_cast<int>(size + fill);
    wchar_t* to = out.GetBuffer(newLength) + out.GetLength();
    if (zeroFill && !spec.leftAlign)
        zeros += std::exchange(fill, 0);
    if (!spec.leftAlign)
        to = std::fill_n(to, fill, L' ');
    to = std::copy(prefix.begin(), prefix.end(), to);
    to = std::fill_n(to, zeros, L'0');
    to = std::copy(text.begin(), text.end(), to);
    if (spec.leftAlign)
        std::fill_n(to, fill, L' ');
    out.ReleaseBuffer(newLength);
}

std::string_view SignOf(bool negative, const FormatSpec& spec)
{
    using namespace std::string_view_literals;
    return negative ? "-"sv : spec.plusSign ? "+"sv : spec.blankSign ? " "sv : ""sv;
}

// The digits of a number in a base of 2 to the power of `bits`, written in front of `end`.
std::string_view PowerOfTwoDigits(std::uint64_t number, int bits, bool capital, char* end)
{
    const char* const names = capital ? "0123456789ABCDEF" : "0123456789abcdef";
    char* begin = end;
    do
    {
        *--begin = names[number & ((1u << bits) - 1)];
        number >>= bits;
    } while (number != 0);
    return {begin, end};
}

bool AppendText(ZTString& out, std::wstring_view text, const FormatSpec& spec)
{
    if (!spec.IsOneOf(L"sS"))
        return false;
    if (spec.precision >= 0)
        text = text.substr(0, static_cast<std::size_t>(spec.precision));
    AppendField(out, {}, 0, text, spec, false);
    return true;
}

bool AppendDouble(ZTString& out, double value, const FormatSpec& spec)
{
    if (!spec.IsOneOf(L"fFeEgG") || spec.alternate)
        return false;
    char digits[kFormatSizeMax + 400]; // the largest double has 309 digits before its point
    const double magnitude = std::fabs(value);
    char* end;
    if (spec.conversion == 0)
        end = std::to_chars(digits, std::end(digits), magnitude).ptr;
    else
    {
        const wchar_t form = spec.conversion | 0x20; // lower case
        const std::chars_format format = form == L'f'   ? std::chars_format::fixed
                                         : form == L'e' ? std::chars_format::scientific
                                                        : std::chars_format::general;
        const int precision = spec.precision < 0 ? 6 : spec.precision;
        end = std::to_chars(digits, std::end(digits), magnitude, format, precision).ptr;
        if (form != spec.conversion)
            std::transform(digits, end, digits,
                           [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    }
    AppendField(out, SignOf(std::signbit(value), spec), 0, std::string_view(digits, end), spec,
                spec.zeroFill && std::isfinite(value));
    return true;
}

} // namespace

PlaceholderValue::PlaceholderValue(const CStringW& text, const wchar_t*)
    : mValue{.wide = text.GetString()}, mSize(static_cast<std::size_t>(text.GetLength())), mKind(Kind::Wide)
{
}

PlaceholderValue::PlaceholderValue(const wchar_t* text, const wchar_t*)
    : mValue{.wide = text}, mSize(text != nullptr ? std::wcslen(text) : 0), mKind(Kind::Wide)
{
}

PlaceholderValue::PlaceholderValue(const char* text, const wchar_t*)
    : mValue{.narrow = text}, mSize(text != nullptr ? std::strlen(text) : 0), mKind(Kind::Narrow)
{
}

int PlaceholderValue::Format(wchar_t* out, int capacity, const wchar_t* spec) const
{
    ZTString text;
    if (spec != nullptr && *spec != L'%')
        return -1;
    if (!AppendTo(text, spec != nullptr ? spec + 1 : L"") || text.GetLength() > capacity)
        return -1;
    std::copy_n(text.GetString(), text.GetLength(), out);
    return text.GetLength();
}

bool PlaceholderValue::AppendTo(ZTString& out, std::wstring_view text) const
{
    FormatSpec spec;
    if (!ParseFormatSpec(text, spec))
        return false;
    switch (mKind)
    {
    case Kind::Wide:
        return AppendText(out, {mValue.wide, mSize}, spec);
    case Kind::Narrow:
        return AppendText(out, text::FromUtf8({mValue.narrow, mSize}), spec);
    case Kind::Double:
        return AppendDouble(out, mValue.real, spec);
    default:
        return AppendInteger(out, spec);
    }
}

bool PlaceholderValue::AppendInteger(ZTString& out, const FormatSpec& spec) const
{
    if (spec.conversion == L'c')
    {
        if (mValue.integer > static_cast<std::uint64_t>(std::numeric_limits<wchar_t>::max()))
            return false;
        const auto character = static_cast<wchar_t>(mValue.integer);
        AppendField(out, {}, 0, std::wstring_view(&character, 1), spec, false);
        return true;
    }
    const bool natural = spec.conversion == 0;
    const bool signedDecimal = spec.conversion == L'd' || spec.conversion == L'i';
    const bool capital = spec.conversion == L'X';
    const bool hexadecimal = spec.conversion == L'x' || capital;
    const bool octal = spec.conversion == L'o';
    if (!natural && !signedDecimal && !hexadecimal && !octal && spec.conversion != L'u')
        return false;

    // The value in its own width, read as the conversion asks.
    const bool asSigned = signedDecimal || (natural && mKind == Kind::Signed);
    std::uint64_t magnitude = mValue.integer;
    if (mSize == sizeof(std::uint32_t))
        magnitude = asSigned ? static_cast<std::uint64_t>(static_cast<std::int32_t>(magnitude))
                             : static_cast<std::uint32_t>(magnitude);
    const bool negative = asSigned && static_cast<std::int64_t>(magnitude) < 0;
    if (negative)
        magnitude = 0 - magnitude;

    char digits[24];
    std::string_view text;
    if (hexadecimal || octal)
        text = PowerOfTwoDigits(magnitude, hexadecimal ? 4 : 3, capital, std::end(digits));
    else
        text = {digits, std::to_chars(digits, std::end(digits), magnitude).ptr};
    // printf shows no digit at all of a zero with precision zero.
    if (magnitude == 0 && spec.precision == 0)
        text = {};

    const auto precision = static_cast<std::size_t>(std::max(spec.precision, 0));
    std::size_t zeros = precision > text.size() ? precision - text.size() : 0;
    if (spec.alternate && octal && zeros == 0 && !text.starts_with('0'))
        zeros = 1;
    std::string_view prefix;
    if (asSigned)
        prefix = SignOf(negative, spec);
    else if (spec.alternate && hexadecimal && magnitude != 0)
        prefix = capital ? "0X" : "0x";
    AppendField(out, prefix, zeros, text, spec, spec.zeroFill && spec.precision < 0);
    return true;
}
