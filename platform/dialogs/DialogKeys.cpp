// SPDX-License-Identifier: MIT
// What Enter and Esc do in a dialog, which displays send no other keys. Enter presses the push button with
// the focus, else the default button; Esc asks the dialog to cancel itself, as the close box does.
#include "platform/dialogs/DialogLoop.h"
#include "platform/dialogs/WindowTable.h"

namespace platform
{

namespace
{

void PressDefault(Window& dialog)
{
    const Window* const focus = dialog.dialog->focus;
    const bool pressesFocus = focus != nullptr && focus->kind == WindowKind::PushButton;
    const UINT id = pressesFocus                        ? focus->id
                    : dialog.dialog->defaultButton != 0 ? dialog.dialog->defaultButton
                                                        : IDOK;
    const Window* const button = FindControl(dialog, id);
    if (button == nullptr || button->enabled)
        Call(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(HandleOf(button)));
}

} // namespace

void PostCancel(Window& dialog)
{
    const Window* const button = FindControl(dialog, IDCANCEL);
    if (button == nullptr || button->enabled)
        PostTo(dialog.handle, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED),
               reinterpret_cast<LPARAM>(HandleOf(button)));
}

} // namespace platform

using namespace platform;

BOOL IsDialogMessageW(HWND handle, LPMSG message)
{
    Window* const dialog = FindDialog(handle);
    Window* const window = FindWindow(message->hwnd);
    if (dialog == nullptr || window == nullptr || &DialogOf(*window) != dialog)
        return FALSE;
    if (message->message != WM_KEYDOWN)
        DispatchMessageW(message);
    else if (message->wParam == VK_RETURN)
        PressDefault(*dialog);
    else
        PostCancel(*dialog);
    return TRUE;
}
