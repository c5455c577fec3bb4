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

} // namespace

ZTString ShowDecimal(const std::string& number, int digits)
{
    std::array<wchar_t, 16> point = UserText(LOCALE_SDECIMAL);
    std::array<wchar_t, 16> thousands = UserText(LOCALE_STHOUSAND);
    const NUMBERFMTW format{static_cast<UINT>(digits), UserNumber(LOCALE_ILZERO),    0, point.data(),
                            thousands.data(),          UserNumber(LOCALE_INEGNUMBER)};
    const ZTString plain = Widen(number);
    std::array<wchar_t, 1024> shown{};
    const int length = GetNumberFormatEx(LOCALE_NAME_USER_DEFAULT, 0, plain, &format, shown.data(),
                                         static_cast<int>(shown.size()));
    return length > 0 ? ZTString(shown.data()) : plain;
}

} // namespace kelvane
