// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include "libraries/oriska/FormatSpec.h"
#include "libraries/oriska/Widen.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

namespace
{

constexpr std::wstring_view kTextConversions = L"sS";
constexpr std::wstring_view kIntegerConversions = L"diuoxX";
constexpr std::wstring_view kDoubleConversions = L"fFeEgG";

bool IsOneOf(wchar_t conversion, std::wstring_view conversions)
{
    return conversions.find(conversion) != std::wstring_view::npos;
}

// Adds `text` in a field of the spec's width. The fill with zeros goes behind the first `prefixSize`
// characters, which are a sign or a base.
void AppendField(ZTString& out, std::wstring_view text, std::size_t prefixSize, const FormatSpec& spec,
                 bool zeroFill)
{
    const auto width = static_cast<std::size_t>(spec.width);
    const std::size_t fill = width > text.size() ? width - text.size() : 0;
    const int length = out.GetLength();
    wchar_t* to = out.GetBuffer(length + static_cast<int>(text.size() + fill)) + length;
    if (spec.leftAlign || !zeroFill)
        prefixSize = 0;
    const auto add = [&to](std::wstring_view part) { to = std::copy(part.begin(), part.end(), to); };
    add(text.substr(0, prefixSize));
    if (!spec.leftAlign)
        to = std::fill_n(to, fill, zeroFill ? L'0' : L' ');
    add(text.substr(prefixSize));
    if (spec.leftAlign)
        std::fill_n(to, fill, L' ');
    out.ReleaseBuffer(length + static_cast<int>(text.size() + fill));
}

std::string_view SignOf(bool negative, const FormatSpec& spec)
{
    return negative ? "-" : spec.plusSign ? "+" : spec.blankSign ? " " : "";
}

// A number's characters, made narrow and shown wide.
struct NumberText
{
    wchar_t text[kFormatSizeMax + 400]; // the largest double has 309 digits before its point
    std::size_t size = 0;

    void Add(std::string_view part)
    {
        for (const char character : part)
            text[size++] = static_cast<wchar_t>(character);
    }
};

bool AppendText(ZTString& out, std::wstring_view text, const FormatSpec& spec)
{
    if (spec.conversion != 0 && !IsOneOf(spec.conversion, kTextConversions))
        return false;
    if (spec.precision >= 0)
        text = text.substr(0, static_cast<std::size_t>(spec.precision));
    AppendField(out, text, 0, spec, false);
    return true;
}

bool AppendDouble(ZTString& out, double value, const FormatSpec& spec)
{
    if (spec.conversion != 0 && (!IsOneOf(spec.conversion, kDoubleConversions) || spec.alternate))
        return false;
    char digits[sizeof(NumberText::text) / sizeof(wchar_t)];
    const double magnitude = std::fabs(value);
    std::to_chars_result end{};
    if (spec.conversion == 0)
        end = std::to_chars(digits, std::end(digits), magnitude);
    else
    {
        const std::chars_format form = IsOneOf(spec.conversion, L"fF")   ? std::chars_format::fixed
                                       : IsOneOf(spec.conversion, L"eE") ? std::chars_format::scientific
                                                                         : std::chars_format::general;
        end =
            std::to_chars(digits, std::end(digits), magnitude, form, spec.precision < 0 ? 6 : spec.precision);
    }
    if (IsOneOf(spec.conversion, L"FEG"))
        std::transform(digits, end.ptr, digits,
                       [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });

    NumberText number;
    number.Add(SignOf(std::signbit(value), spec));
    const std::size_t prefixSize = number.size;
    number.Add({digits, end.ptr});
    AppendField(out, {number.text, number.size}, prefixSize, spec, spec.zeroFill && std::isfinite(value));
    return true;
}

} // namespace

PlaceholderValue::PlaceholderValue(const CStringW& text, const wchar_t*)
    : mSize(static_cast<std::size_t>(text.GetLength())), mKind(Kind::Wide)
{
    mValue.wide = text.GetString();
}

PlaceholderValue::PlaceholderValue(const wchar_t* text, const wchar_t*)
    : mSize(text ? std::wcslen(text) : 0), mKind(Kind::Wide)
{
    mValue.wide = text;
}

PlaceholderValue::PlaceholderValue(const char* text, const wchar_t*)
    : mSize(text ? std::strlen(text) : 0), mKind(Kind::Narrow)
{
    mValue.narrow = text;
}

PlaceholderValue::PlaceholderValue(double number, const wchar_t*) : mSize(sizeof number), mKind(Kind::Double)
{
    mValue.real = number;
}

PlaceholderValue::PlaceholderValue(int number, const wchar_t*) : mSize(sizeof number), mKind(Kind::Signed)
{
    mValue.integer = static_cast<std::uint64_t>(number);
}

PlaceholderValue::PlaceholderValue(long number, const wchar_t*) : mSize(sizeof number), mKind(Kind::Signed)
{
    mValue.integer = static_cast<std::uint64_t>(number);
}

PlaceholderValue::PlaceholderValue(long long number, const wchar_t*)
    : mSize(sizeof number), mKind(Kind::Signed)
{
    mValue.integer = static_cast<std::uint64_t>(number);
}

// As an argument of printf it would be widened to int.
PlaceholderValue::PlaceholderValue(unsigned char number, const wchar_t*) : PlaceholderValue(unsigned{number})
{
}

PlaceholderValue::PlaceholderValue(unsigned int number, const wchar_t*)
    : mSize(sizeof number), mKind(Kind::Unsigned)
{
    mValue.integer = number;
}

PlaceholderValue::PlaceholderValue(unsigned long number, const wchar_t*)
    : mSize(sizeof number), mKind(Kind::Unsigned)
{
    mValue.integer = number;
}

PlaceholderValue::PlaceholderValue(unsigned long long number, const wchar_t*)
    : mSize(sizeof number), mKind(Kind::Unsigned)
{
    mValue.integer = number;
}

int PlaceholderValue::Format(wchar_t* out, int capacity, const wchar_t* spec) const
{
    ZTString text;
    if (spec && *spec != L'%')
        return -1;
    if (!AppendTo(text, spec ? spec + 1 : L"") || text.GetLength() > capacity)
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
        return AppendText(out, Widen({mValue.narrow, mSize}), spec);
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
        AppendField(out, {&character, 1}, 0, spec, false);
        return true;
    }
    if (spec.conversion != 0 && !IsOneOf(spec.conversion, kIntegerConversions))
        return false;

    const bool asSigned = spec.conversion == 0 ? mKind == Kind::Signed : IsOneOf(spec.conversion, L"di");
    // The value in its own width, read as the conversion asks.
    std::uint64_t magnitude = mValue.integer;
    if (mSize == sizeof(std::uint32_t))
        magnitude = asSigned ? static_cast<std::uint64_t>(static_cast<std::int32_t>(magnitude))
                             : static_cast<std::uint32_t>(magnitude);
    const bool negative = asSigned && static_cast<std::int64_t>(magnitude) < 0;
    if (negative)
        magnitude = 0 - magnitude;

    const bool capital = spec.conversion == L'X';
    const int base = capital || spec.conversion == L'x' ? 16 : spec.conversion == L'o' ? 8 : 10;
    char digits[24];
    const char* const end = std::to_chars(digits, std::end(digits), magnitude, base).ptr;
    // printf shows no digit at all of a zero with precision zero.
    const auto size = magnitude == 0 && spec.precision == 0 ? 0 : static_cast<std::size_t>(end - digits);
    if (capital)
        std::transform(digits, digits + size, digits,
                       [](char c) { return c >= 'a' ? static_cast<char>(c - 32) : c; });

    NumberText number;
    if (asSigned)
        number.Add(SignOf(negative, spec));
    else if (spec.alternate && base == 16 && magnitude != 0)
        number.Add(capital ? "0X" : "0x");
    const std::size_t prefixSize = number.size;
    auto zeros =
        spec.precision > static_cast<int>(size) ? static_cast<std::size_t>(spec.precision) - size : 0;
    if (spec.alternate && base == 8 && zeros == 0 && (size == 0 || digits[0] != '0'))
        zeros = 1;
    std::fill_n(number.text + number.size, zeros, L'0');
    number.size += zeros;
    number.Add({digits, size});
    AppendField(out, {number.text, number.size}, prefixSize, spec, spec.zeroFill && spec.precision < 0);
    return true;
}
