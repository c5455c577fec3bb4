// SPDX-License-Identifier: MIT
#include "libraries/ipworks/NativePath.h"

std::filesystem::path NativePath(const std::wstring& text)
{
    return text;
}
