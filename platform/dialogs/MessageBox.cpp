// SPDX-License-Identifier: MIT
// A message box is a dialog of the layer's own: a label, and a button for each answer.
#include "platform/resource/DialogTemplate.h"
#include "platform/dialogs/WindowTable.h"
#include "platform/dialogs/DialogLoop.h"

namespace platform
{

namespace
{

constexpr UINT kLabelId = 0xFFFF;

ControlTemplate MakeControl(ControlClass windowClass, UINT id, const wchar_t* text, DWORD style)
{
    ControlTemplate control;
    control.windowClass = windowClass;
    control.id = id;
    control.text = text;
    control.style = style | WS_VISIBLE;
    return control;
}

std::unique_ptr<Window> MakeMessageBox(const wchar_t* text, const wchar_t* caption, UINT type)
{
    const bool isQuestion = (type & MB_TYPEMASK) == MB_YESNO;
    DialogTemplate source;
    // A question has no close box.
    source.style = WS_POPUP | WS_CAPTION | (isQuestion ? 0 : WS_SYSMENU);
    source.caption = caption;
    source.controls.push_back(MakeControl(ControlClass::Static, kLabelId, text, SS_LEFT));
    const DWORD first = WS_TABSTOP | BS_DEFPUSHBUTTON;
    if (isQuestion)
    {
        source.controls.push_back(MakeControl(ControlClass::Button, IDYES, L"&Yes", first));
        source.controls.push_back(
            MakeControl(ControlClass::Button, IDNO, L"&No", WS_TABSTOP | BS_PUSHBUTTON));
    }
    else
        source.controls.push_back(MakeControl(ControlClass::Button, IDOK, L"OK", first));
    std::unique_ptr<Window> box = MakeDialog(source);
    box->dialog->isMessageBox = true;
    box->dialog->messageBoxType = type;
    box->dialog->focus = box->children[1].get();
    return box;
}

// Esc and the close box answer OK where that is the only button, and nothing else.
INT_PTR Procedure(HWND handle, UINT message, WPARAM wParam, LPARAM)
{
    if (message != WM_COMMAND)
        return FALSE;
    const Window& box = *FindDialog(handle);
    const UINT id = LOWORD(wParam);
    if (FindControl(box, id) != nullptr)
        EndDialog(handle, id);
    else if (id == IDCANCEL && FindControl(box, IDOK) != nullptr)
        EndDialog(handle, IDOK);
    return TRUE;
}

int Run(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type, Deadline deadline)
{
    if (!StartWindows())
        return 0;
    std::unique_ptr<Window> box =
        MakeMessageBox(text != nullptr ? text : L"", caption != nullptr ? caption : L"Error", type);
    return static_cast<int>(RunModal(std::move(box), {owner, &Procedure, 0, deadline}));
}

} // namespace

} // namespace platform

int MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type)
{
    return platform::Run(owner, text, caption, type, kNever);
}

int MessageBoxTimeoutW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type, WORD, DWORD milliseconds)
{
    return platform::Run(owner, text, caption, type, Clock::now() + std::chrono::milliseconds(milliseconds));
}
