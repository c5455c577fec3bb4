// SPDX-License-Identifier: MIT
#include "tests/support/WindowProbe.h"

#include "platform/dialogs/UserInput.h"

using platform::Window;

HWND TopWindow()
{
    const Window* top = platform::TopDialog();
    return top ? top->handle : nullptr;
}

HWND FocusedControl()
{
    const Window* top = platform::TopDialog();
    return top && top->dialog->focus ? top->dialog->focus->handle : nullptr;
}

std::wstring FocusedSelection()
{
    const Window& edit = *platform::TopDialog()->dialog->focus;
    return edit.text.substr(edit.selectionStart, edit.selectionEnd - edit.selectionStart);
}

void PressKey(int controlId, WORD key)
{
    SetFocus(GetDlgItem(TopWindow(), controlId));
    platform::UserPressed(*platform::TopDialog(), key);
}
