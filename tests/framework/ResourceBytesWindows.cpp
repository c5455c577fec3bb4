// SPDX-License-Identifier: MIT
#include "tests/framework/ResourceBytes.h"

#include <windows.h>

std::string_view FindResourceBytes(int type, int id)
{
    const HRSRC resource = FindResourceW(nullptr, MAKEINTRESOURCEW(id), MAKEINTRESOURCEW(type));
    if (!resource)
        return {};
    return {static_cast<const char*>(LockResource(LoadResource(nullptr, resource))),
            SizeofResource(nullptr, resource)};
}
