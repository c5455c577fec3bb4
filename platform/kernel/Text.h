// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform
{

// Copies text and terminator into a caller's buffer of `size` characters; false when they do not fit, which
// leaves the buffer alone.
bool CopyOut(std::wstring_view text, wchar_t* buffer, std::size_t size);

// As much of a file as can be read: nothing of one that is missing or a folder.
std::string ReadWholeFile(const char* path);

} // namespace platform
