// SPDX-License-Identifier: MIT
// The widgets that show a dialog's controls.
#pragma once

#include "platform/dialogs/Display.h"

class QWidget;

namespace platform
{

// Makes the widget of a control, in the state the control is in now. It reports what the person does with it
// and belongs to `parent`.
QWidget* MakeControl(Window& control, QWidget& parent);

// Brings the control's widget up to date with one change, see Display::Refresh.
void RefreshControl(const Window& control, Change change, std::size_t oldLength);

// Scrolls a multi-line edit, see Display::ScrollLines.
void ScrollControl(const Window& edit, long lines);

} // namespace platform
