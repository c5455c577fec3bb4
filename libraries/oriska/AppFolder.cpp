// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include <filesystem>
#include <string>

ZTString GetPathInAppFolder(const wchar_t* name)
{
    // A path that fills the buffer may have been cut.
    std::wstring path(MAX_PATH, L'\0');
    while (GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())) == path.size())
        path.resize(path.size() * 2);
    path.resize(path.rfind(wchar_t{std::filesystem::path::preferred_separator}) + 1);
    path += name;
    return ZTString(path.data(), static_cast<int>(path.size()));
}
