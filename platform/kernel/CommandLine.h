// SPDX-License-Identifier: MIT
// Both ways between one command line and a program's arguments.
#pragma once

#include "platformExport.h"

#include <string>
#include <string_view>
#include <vector>

namespace platform
{

// The line that a Windows user would have typed for these arguments, so that a program which reads the line
// itself finds the same words. An argument with blanks is quoted; when it begins with a switch character (-
// or /) and has a separator (: or =) before its first blank, the quotes go around the value after it. An
// empty or all-blank argument is quoted. What begins with a quote already is left as it is.
PLATFORM_EXPORT std::wstring JoinCommandLine(const std::vector<std::wstring>& arguments);

// The words of a line by the rules of Windows' C runtime: blanks and tabs separate them, quotes hold them
// together, 2n backslashes before a quote stand for n and one more takes the quote itself, and a doubled
// quote inside quotes is one. The first word, the program, knows quotes alone.
PLATFORM_EXPORT std::vector<std::wstring> SplitCommandLine(std::wstring_view line);

} // namespace platform
