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

// An icon resource's image closest to a size in pixels, as the bytes of a PNG file or of a device-independent
// bitmap (ICO form: XOR and AND masks, no file header). Empty when the handle is not an icon's.
struct IconImage
{
    const BYTE* bytes = nullptr;
    std::size_t size = 0;
    bool isPng = false;
};
PLATFORM_EXPORT IconImage FindIconImage(HICON icon, int pixels);

} // namespace platform
