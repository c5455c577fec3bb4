// SPDX-License-Identifier: MIT
// What the person at the display did: a display reports it here, within its Wait and on its thread. Texts,
// selections and the focus count at once. What the program is told (a click, a key, the close box) waits
// after all posted messages, in the order of the calls, and is dropped when the window cannot take it any
// more. A check box changes when the program hears of the click, which the display sees as Change::Check.
#pragma once

#include "platform/dialogs/Window.h"

namespace platform
{

PLATFORM_EXPORT void UserClicked(Window& button);
PLATFORM_EXPORT void UserTyped(Window& edit, std::wstring wholeText);
PLATFORM_EXPORT void UserSelected(Window& comboBox, int index);
PLATFORM_EXPORT void UserFocused(Window& control);
PLATFORM_EXPORT void UserPressed(Window& dialog, WORD key); // VK_RETURN or VK_ESCAPE
PLATFORM_EXPORT void UserClosed(Window& dialog);            // the close box
PLATFORM_EXPORT void UserMinimized(Window& dialog, bool iconic);

// True while a person's input still has a window that can take it.
bool CanTakeInput(const MSG& message);

} // namespace platform
