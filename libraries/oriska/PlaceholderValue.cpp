// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include "libraries/oriska/FormatSpec.h"
#include "text/Unicode.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>
#include <utility>

namespace
{

// Adds a sign, zeros and the text itself in a field of the conversion's width.
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

bool AppendText(ZTString& out, std::wstring_view text, const FormatSpec& spec)
{
    if (spec.conversion != 0 && spec.conversion != L's' && spec.conversion != L'S')
        return false;
    if (spec.precision >= 0)
        text = text.substr(0, static_cast<std::size_t>(spec.precision));
    AppendField(out, {}, 0, text, spec, false);
    return true;
}

bool AppendDouble(ZTString& out, double value, const FormatSpec& spec)
{
    if (spec.conversion != 0 && spec.conversion != L'f')
        return false;
    char digits[kFormatSizeMax + 400]; // the largest double has 309 digits before its point
    const double magnitude = std::fabs(value);
    const int precision = spec.precision < 0 ? 6 : spec.precision;
    char* const end =
        spec.conversion == 0
            ? std::to_chars(digits, std::end(digits), magnitude).ptr
            : std::to_chars(digits, std::end(digits), magnitude, std::chars_format::fixed, precision).ptr;
    AppendField(out, std::signbit(value) ? "-" : "", 0, std::string_view(digits, end), spec,
                spec.zeroFill && std::isfinite(value));
    return true;
}

} // namespace

PlaceholderValue::PlaceholderValue(const CStringW& text, const wchar_t*)
    : mValue{.wide = text.GetString()}, mSize(static_cast<std::size_t>(text.GetLength())), mKind(eKind::Wide)
{
}

PlaceholderValue::PlaceholderValue(const wchar_t* text, const wchar_t*)
    : mValue{.wide = text}, mSize(text != nullptr ? std::wcslen(text) : 0), mKind(eKind::Wide)
{
}

PlaceholderValue::PlaceholderValue(const char* text, const wchar_t*)
    : mValue{.narrow = text}, mSize(text != nullptr ? std::strlen(text) : 0), mKind(eKind::Narrow)
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
    case eKind::Wide:
        return AppendText(out, {mValue.wide, mSize}, spec);
    case eKind::Narrow:
        return AppendText(out, text::FromUtf8({mValue.narrow, mSize}), spec);
    case eKind::Double:
        return AppendDouble(out, mValue.real, spec);
    default:
        return AppendInteger(out, spec);
    }
}

bool PlaceholderValue::AppendInteger(ZTString& out, const FormatSpec& spec) const
{
    const bool hexadecimal = spec.conversion == L'X';
    const bool asSigned = spec.conversion == L'd' || (spec.conversion == 0 && mKind == eKind::Signed);
    if (!hexadecimal && !asSigned && spec.conversion != L'u' && spec.conversion != 0)
        return false;

    // The value in its own width, read as the conversion asks.
    std::uint64_t magnitude = mValue.integer;
    if (mSize == sizeof(std::uint32_t))
        magnitude = asSigned ? static_cast<std::uint64_t>(static_cast<std::int32_t>(magnitude))
                             : static_cast<std::uint32_t>(magnitude);
    const bool negative = asSigned && static_cast<std::int64_t>(magnitude) < 0;
    if (negative)
        magnitude = 0 - magnitude;

    char digits[24];
    char* const end = std::to_chars(digits, std::end(digits), magnitude, hexadecimal ? 16 : 10).ptr;
    std::transform(digits, end, digits,
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    // printf shows no digit at all of a zero with precision zero.
    const std::string_view text(digits, magnitude == 0 && spec.precision == 0 ? digits : end);
    const auto precision = static_cast<std::size_t>(std::max(spec.precision, 0));
    const std::size_t zeros = precision > text.size() ? precision - text.size() : 0;
    AppendField(out, negative ? "-" : "", zeros, text, spec, spec.zeroFill && spec.precision < 0);
    return true;
}
