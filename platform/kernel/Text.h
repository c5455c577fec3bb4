// SPDX-License-Identifier: MIT
// Between the system's bytes (paths, arguments, environment) and wide text. The bytes are UTF-8 nearly
// always; a byte that is not part of valid UTF-8 becomes the lone surrogate U+DC00 + byte (U+DC80 to
// U+DCFF), and back, so every name survives the way there and back.
#pragma once

#include "platformExport.h"

#include <string>
#include <string_view>

PLATFORM_EXPORT std::wstring WideFromSystem(std::string_view bytes);
PLATFORM_EXPORT std::string SystemFromWide(std::wstring_view text);

// Copies text and terminator into a caller's buffer of `size` characters; false when they do not fit, which
// leaves the buffer alone.
bool CopyOut(std::wstring_view text, wchar_t* buffer, std::size_t size);
