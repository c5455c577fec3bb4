// SPDX-License-Identifier: MIT
// How controls serve messages.
#pragma once

#include "platform/dialogs/Window.h"

namespace platform
{

LRESULT ServeControl(Window& control, UINT message, WPARAM wParam, LPARAM lParam);

// WM_SETTEXT, WM_GETTEXT, WM_GETTEXTLENGTH of every window but a combo box and an edit.
LRESULT ServeText(Window& window, UINT message, WPARAM wParam, LPARAM lParam);

// Replaces an edit's text without telling the display.
void SetEditText(Window& edit, std::wstring text);

} // namespace platform
