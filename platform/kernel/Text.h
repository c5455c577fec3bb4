// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

// Copies text and terminator into a caller's buffer of `size` characters; false when they do not fit, which
// leaves the buffer alone.
bool CopyOut(std::wstring_view text, wchar_t* buffer, std::size_t size);
