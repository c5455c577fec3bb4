// SPDX-License-Identifier: MIT
// Modal dialogs: their own loop, what they do with messages that their procedure leaves, message boxes.
#pragma once

#include "base/Deadline.h"
#include "platform/dialogs/Window.h"

#include <memory>

namespace platform
{

struct DialogTemplate;

// The windows of a template. Null when it has a control of a kind that the layer lacks.
std::unique_ptr<Window> MakeDialog(const DialogTemplate& source);

struct ModalRun
{
    HWND owner = nullptr; // disabled meanwhile; a control stands for its dialog
    DLGPROC procedure = nullptr;
    LPARAM parameter = 0;
    Deadline deadline = kNever; // the result is then MB_TIMEDOUT
};

// Shows a dialog and serves messages until it has been ended; gives the result of EndDialog.
INT_PTR RunModal(std::unique_ptr<Window> made, const ModalRun& run);

// Tells a dialog, after all messages already posted, that the person cancels it: Esc and the close box.
// Nothing happens where its Cancel button is disabled.
void PostCancel(Window& dialog);

LRESULT ServeDialog(Window& dialog, UINT message, WPARAM wParam, LPARAM lParam);

} // namespace platform
