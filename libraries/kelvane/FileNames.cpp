// SPDX-License-Identifier: MIT
// The names that a file may have on both systems: Windows' rules, which are the stricter ones
// (https://learn.microsoft.com/windows/win32/fileio/naming-a-file), and Linux' 255 bytes.
#include "foundation/Kelvane.h"
#include "libraries/kelvane/Text.h"
#include "text/SafeToShow.h"
#include "text/Unicode.h"

#include <algorithm>
#include <array>

namespace
{

// The name and an extension of four characters fit into 255 bytes of UTF-8, so also into 255 units of UTF-16.
constexpr std::size_t kLongestName = 255 - 4;
constexpr std::wstring_view kForbidden = L"<>:\"/\\|?*";
constexpr std::wstring_view kForbiddenAtEnd = L". ";

bool IsForbidden(char32_t point)
{
    return point < 0x20 || point == 0x7F || !text::IsCharacter(point) ||
           kForbidden.find(static_cast<wchar_t>(point)) != std::wstring_view::npos;
}

// Takes the first character, all of it, off the front of a text that is not empty.
std::wstring_view TakeCharacter(std::wstring_view& text, char32_t& point)
{
    const std::wstring_view before = text;
    point = text::TakePoint(text);
    return before.substr(0, before.size() - text.size());
}

std::wstring WithoutForbidden(std::wstring_view text, std::wstring_view replacement)
{
    std::wstring result;
    for (char32_t point; !text.empty();)
    {
        const std::wstring_view character = TakeCharacter(text, point);
        result += IsForbidden(point) ? replacement : character;
    }
    return result;
}

// A device's name counts with any extension as well.
bool IsReserved(std::wstring_view name)
{
    std::wstring base(name.substr(0, name.find(L'.')));
    base.erase(base.find_last_not_of(L' ') + 1);
    std::transform(base.begin(), base.end(), base.begin(),
                   [](wchar_t c)
                   { return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - (L'a' - L'A')) : c; });
    constexpr std::array<std::wstring_view, 6> kDevices{L"CON", L"PRN",    L"AUX",
                                                        L"NUL", L"CONIN$", L"CONOUT$"};
    if (std::find(kDevices.begin(), kDevices.end(), base) != kDevices.end())
        return true;
    // The superscript digits count as digits here.
    return base.size() == 4 && (base.starts_with(L"COM") || base.starts_with(L"LPT")) &&
           std::wstring_view(L"123456789\u00B9\u00B2\u00B3").find(base[3]) != std::wstring_view::npos;
}

void CutToLength(std::wstring& name)
{
    std::wstring_view rest = name;
    std::size_t bytes = 0;
    for (char32_t point; !rest.empty();)
    {
        const std::size_t start = name.size() - rest.size();
        bytes += kelvane::Narrow(TakeCharacter(rest, point)).size();
        if (bytes > kLongestName)
            return name.resize(start);
    }
}

// Cuts the name to its length, and off what it may not end in.
void Fit(std::wstring& name)
{
    CutToLength(name);
    name.erase(name.find_last_not_of(kForbiddenAtEnd) + 1);
}

} // namespace

void RemoveIllegalFileSystemCharacters(ZTString& name, const wchar_t* replacement)
{
    const std::wstring substitute = WithoutForbidden(kelvane::ViewOf(replacement), {});
    std::wstring result = WithoutForbidden(name.AsView(), substitute);

    const std::size_t end = result.find_last_not_of(kForbiddenAtEnd) + 1;
    const std::size_t trailing = result.size() - end;
    result.resize(end);
    for (std::size_t count = 0; count < trailing; ++count)
        result += substitute;

    Fit(result);
    // A substitute may itself make a device's name; "_" never does.
    for (const std::wstring_view before : {std::wstring_view(substitute), std::wstring_view(L"_")})
        if (IsReserved(result))
            Fit(result.insert(0, before));
    if (result.empty())
        result = L"_";
    name = result.c_str();
}
