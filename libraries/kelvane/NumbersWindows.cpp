// SPDX-License-Identifier: MIT
#include "libraries/kelvane/Numbers.h"

#include "libraries/kelvane/Text.h"

#include <array>

namespace kelvane
{
namespace
{

DWORD UserNumber(LCTYPE what)
{
    DWORD number = 0;
    GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, what | LOCALE_RETURN_NUMBER, reinterpret_cast<LPWSTR>(&number),
                    sizeof(number) / sizeof(wchar_t));
    return number;
}

std::array<wchar_t, 16> UserText(LCTYPE what)
{
    std::array<wchar_t, 16> text{};
    GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, what, text.data(), static_cast<int>(text.size()));
    return text;
}

// The sizes of the digit groups, "3;2;0", as the number that the call wants, 32. A list without the 0 at its
// end does not repeat its last size, which that number says by a 0 at its own end.
UINT UserGrouping()
{
    UINT grouping = 0;
    bool repeats = false;
    for (const wchar_t character : UserText(LOCALE_SGROUPING))
        if (character == L'0')
            repeats = true;
        else if (character > L'0' && character <= L'9')
            grouping = grouping * 10 + static_cast<UINT>(character - L'0');
    return repeats ? grouping : grouping * 10;
}

} // namespace

ZTString ShowDecimal(const std::string& number, int digits, bool grouping)
{
    std::array<wchar_t, 16> point = UserText(LOCALE_SDECIMAL);
    std::array<wchar_t, 16> thousands = UserText(LOCALE_STHOUSAND);
    const NUMBERFMTW format{
        static_cast<UINT>(digits), UserNumber(LOCALE_ILZERO),    grouping ? UserGrouping() : 0, point.data(),
        thousands.data(),          UserNumber(LOCALE_INEGNUMBER)};
    const ZTString plain = Widen(number);
    std::array<wchar_t, 1024> shown{};
    const int length = GetNumberFormatEx(LOCALE_NAME_USER_DEFAULT, 0, plain, &format, shown.data(),
                                         static_cast<int>(shown.size()));
    return length > 0 ? ZTString(shown.data()) : plain;
}

} // namespace kelvane
