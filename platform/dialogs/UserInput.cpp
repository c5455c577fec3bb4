// SPDX-License-Identifier: MIT
#include "platform/dialogs/UserInput.h"

#include "platform/dialogs/Controls.h"
#include "platform/dialogs/WindowTable.h"

#include <algorithm>
#include <utility>

namespace platform
{

void UserClicked(Window& button)
{
    TheQueue().AddInput(button.handle, BM_CLICK, 0, 0);
}

void UserTyped(Window& edit, std::wstring wholeText)
{
    // What is pasted may hold an end of text, after which no program would read.
    wholeText.resize(std::min(wholeText.find(L'\0'), wholeText.size()));
    SetEditText(edit, std::move(wholeText));
    edit.selectionStart = edit.selectionEnd = edit.text.size();
}

void UserSelected(Window& comboBox, int index)
{
    comboBox.selection = index;
}

void UserFocused(Window& control)
{
    DialogOf(control).dialog->focus = &control;
}

void UserPressed(Window& dialog, WORD key)
{
    const Window* const focus = dialog.dialog->focus;
    TheQueue().AddInput(HandleOf(focus != nullptr ? focus : &dialog), WM_KEYDOWN, key, 0);
}

void UserClosed(Window& dialog)
{
    TheQueue().AddInput(dialog.handle, WM_CLOSE, 0, 0);
}

void UserMinimized(Window& dialog, bool iconic)
{
    dialog.dialog->iconic = iconic;
    dialog.dialog->needsPaint = dialog.visible;
}

bool CanTakeInput(const MSG& message)
{
    Window* const window = FindWindow(message.hwnd);
    if (window == nullptr)
        return false;
    if (message.message != BM_CLICK)
        return DialogOf(*window).visible && DialogOf(*window).enabled;
    if (IsUsable(*window))
        return true;
    // The display may have ticked the box already.
    TheDisplay().Refresh(*window, Change::Check, 0);
    return false;
}

} // namespace platform
