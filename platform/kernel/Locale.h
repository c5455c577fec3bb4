// SPDX-License-Identifier: MIT
#pragma once

#include "winnls.h"

#include "platformExport.h"

#include <string>
#include <string_view>

namespace platform
{

// The Windows number of a locale as the system names it (de_DE.UTF-8@euro); 0x0409 for C, POSIX and the
// empty name, LOCALE_CUSTOM_DEFAULT for one that has no number.
PLATFORM_EXPORT LCID LcidOfLocale(std::string_view name);

// What LOCALE_CUSTOM_DEFAULT stands for, as ICU names it, the user's default or the system's; empty when
// neither has that number, and when both have and differ.
std::string LocaleWithoutNumber();

// Name of the user's character set, as ICU takes it: the one in the locale's name, also where the system
// lacks that locale; UTF-8 where no locale is set, or one without a set of its own that the system lacks.
std::string UserCharset();

} // namespace platform
