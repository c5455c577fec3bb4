// SPDX-License-Identifier: MIT
// Dialog templates of the extended form, which DIALOGEX statements make.
#pragma once

#include "platform/resource/ResFile.h"

#include <optional>

namespace platform
{

// In dialog units: a quarter of the average character width, an eighth of the character height of the
// dialog's font. Controls count from the upper left corner of the dialog's client area.
struct DialogRect
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

struct DialogFont
{
    std::wstring face; // empty: the display's own
    int points = 8;
    int weight = 400;
    bool italic = false;
};

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

// Nothing for a template of the old form, and when the bytes end before the template does.
PLATFORM_EXPORT std::optional<DialogTemplate> ReadDialogTemplate(Bytes bytes);

} // namespace platform
