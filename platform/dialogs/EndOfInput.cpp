// SPDX-License-Identifier: MIT
#include "platform/dialogs/EndOfInput.h"

#include "platform/dialogs/WindowTable.h"

namespace platform
{

namespace
{

// The button that answers a message box when a person's input has ended: No, or the only one.
UINT AnswerOfNobody(const Window& messageBox)
{
    return FindControl(messageBox, IDNO) != nullptr ? IDNO : IDOK;
}

} // namespace

bool CancelTopDialog()
{
    Window* const top = TopDialog();
    if (top == nullptr || !top->visible || !top->enabled || HandlerDepth() > top->dialog->depth)
        return false;
    const UINT id = top->dialog->isMessageBox ? AnswerOfNobody(*top) : IDCANCEL;
    return PostTo(top->handle, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
                  reinterpret_cast<LPARAM>(HandleOf(FindControl(*top, id))));
}

} // namespace platform
