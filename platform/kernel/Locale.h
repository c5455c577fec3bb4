// SPDX-License-Identifier: MIT
#pragma once

#include "winnls.h"

#include "platformExport.h"

#include <string>
#include <string_view>

// The Windows number of a locale as the system names it (de_DE.UTF-8@euro); 0x0409 for C, POSIX and the
// empty name, LOCALE_CUSTOM_DEFAULT for one that has no number.
PLATFORM_EXPORT LCID LcidOfLocale(std::string_view name);

// The locale that the lines of a locale.conf(5) set: LC_ALL, LC_CTYPE or LANG, the first that is there.
PLATFORM_EXPORT std::string LocaleOfFile(std::string_view content);

// Name of the user's character set, as ICU takes it.
std::string UserCharset();
