// SPDX-License-Identifier: MIT
#include "libraries/kelvane/Numbers.h"

#include "libraries/kelvane/Text.h"

#include <unicode/numfmt.h>

#include <cstdlib>
#include <memory>

namespace kelvane
{
namespace
{

// The user's choice for numbers, as POSIX orders the variables; read here and not by setlocale, which would
// change the program's own formats.
icu::Locale UserLocale()
{
    for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"})
        if (const char* name = std::getenv(variable); name != nullptr && *name != '\0')
            return icu::Locale::createCanonical(name);
    return icu::Locale("en_US_POSIX");
}

} // namespace

ZTString ShowDecimal(const std::string& number, int digits, bool grouping)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::NumberFormat> format(icu::NumberFormat::createInstance(UserLocale(), status));
    if (U_FAILURE(status))
        return Widen(number);
    format->setGroupingUsed(grouping);
    format->setMinimumFractionDigits(digits);
    format->setMaximumFractionDigits(digits);
    icu::UnicodeString shown;
    format->format(icu::StringPiece(number), shown, nullptr, status);
    if (U_FAILURE(status))
        return Widen(number);
    std::string narrow;
    return Widen(shown.toUTF8String(narrow));
}

} // namespace kelvane
