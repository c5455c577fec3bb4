// SPDX-License-Identifier: MIT
#include "tests/support/WindowProbe.h"

#include "platform/dialogs/UserInput.h"

using platform::Window;

// Among the newest dialog, its owners and their controls.
static Window* Find(HWND handle)
{
    for (Window* dialog = platform::TopDialog(); dialog != nullptr; dialog = dialog->parent)
    {
        if (dialog->handle == handle)
            return dialog;
        for (const auto& control : dialog->children)
            if (control->handle == handle)
                return control.get();
    }
    return nullptr;
}

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

std::wstring SelectionOf(HWND edit)
{
    const Window* found = Find(edit);
    return found->text.substr(found->selectionStart, found->selectionEnd - found->selectionStart);
}

void PressKey(HWND dialog, int controlId, WORD key)
{
    SetFocus(GetDlgItem(dialog, controlId));
    platform::UserPressed(*Find(dialog), key);
}
