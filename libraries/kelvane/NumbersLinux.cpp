// SPDX-License-Identifier: MIT
#include "libraries/kelvane/Numbers.h"

#include "base/Owned.h"
#include "libraries/kelvane/Text.h"
#include "text/Unicode.h"

#include <unicode/uloc.h>
#include <unicode/unum.h>

#include <array>
#include <cstdlib>

namespace kelvane
{
namespace
{

// The user's choice for numbers, as POSIX orders the variables; read here and not by setlocale, which would
// change the program's own formats.
std::array<char, ULOC_FULLNAME_CAPACITY> UserLocale()
{
    std::array<char, ULOC_FULLNAME_CAPACITY> locale{"en_US_POSIX"};
    for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"})
        if (const char* name = std::getenv(variable); name != nullptr && *name != '\0')
        {
            UErrorCode status = U_ZERO_ERROR;
            uloc_canonicalize(name, locale.data(), locale.size() - 1, &status); // the last one stays 0
            // Windows writes ASCII digits by default, whatever the language's own are.
            uloc_setKeywordValue("numbers", "latn", locale.data(), locale.size() - 1, &status);
            break;
        }
    return locale;
}

} // namespace

ZTString ShowDecimal(const std::string& number, int digits)
{
    UErrorCode status = U_ZERO_ERROR;
    const Owned<UNumberFormat, unum_close> format(
        unum_open(UNUM_DECIMAL, nullptr, 0, UserLocale().data(), nullptr, &status));
    if (U_FAILURE(status))
        return Widen(number);
    unum_setAttribute(format.get(), UNUM_GROUPING_USED, 0);
    unum_setAttribute(format.get(), UNUM_FRACTION_DIGITS, digits);
    std::array<UChar, 1024> shown;
    const int32_t length =
        unum_formatDecimal(format.get(), number.data(), static_cast<int32_t>(number.size()), shown.data(),
                           static_cast<int32_t>(shown.size()), nullptr, &status);
    return U_FAILURE(status)
               ? Widen(number)
               : ZTString(text::FromUtf16({shown.data(), static_cast<std::size_t>(length)}).c_str());
}

} // namespace kelvane
