// SPDX-License-Identifier: MIT
// Dialog templates of both forms, the old and the extended one.
#pragma once

#include "platform/resource/ResFile.h"
#include "platform/window/Window.h"

#include <optional>

namespace platform
{

enum class ControlClass
{
    Button,
    Edit,
    Static,
    ComboBox,
    Other,
};

struct ControlTemplate
{
    ControlClass windowClass = ControlClass::Other;
    UINT id = 0;
    DWORD style = 0;
    DWORD extendedStyle = 0;
    DialogRect rect;
    std::wstring text; // empty where the template names another resource
};

struct DialogTemplate
{
    DWORD style = 0;
    DWORD extendedStyle = 0;
    DialogRect rect;
    std::wstring caption;
    DialogFont font;
    std::vector<ControlTemplate> controls;
};

// Nothing when the bytes end before the template does.
PLATFORM_EXPORT std::optional<DialogTemplate> ReadDialogTemplate(Bytes bytes);

} // namespace platform
