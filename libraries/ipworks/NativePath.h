// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

// The path of a wide text by the rules of the tree: on Linux U+DC80 to U+DCFF stand for the bytes that are
// no UTF-8.
std::filesystem::path NativePath(const std::wstring& text);
