// SPDX-License-Identifier: MIT
// The resources that are embedded in the program.
#pragma once

#include "platform/resource/DialogTemplate.h"

namespace platform
{

// Of several languages the first in the file.
std::optional<DialogTemplate> FindDialogTemplate(LPCWSTR name);

// One of the sixteen texts of a string resource; empty where it holds none.
PLATFORM_EXPORT std::wstring ReadString(Bytes block, UINT index);

struct IconEntry
{
    int width = 0; // pixels
    int bitsPerPixel = 0;
    WORD id = 0; // of the RT_ICON resource with the image
};
PLATFORM_EXPORT std::vector<IconEntry> ReadIconGroup(Bytes group);

} // namespace platform
