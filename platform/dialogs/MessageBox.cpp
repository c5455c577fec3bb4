// SPDX-License-Identifier: MIT
// A message box is a dialog of the layer's own: a label, and a button for each answer.
#include "platform/resource/DialogTemplate.h"
#include "platform/kernel/Error.h"
#include "platform/dialogs/WindowTable.h"
#include "platform/dialogs/DialogLoop.h"

#include <algorithm>

namespace platform
{

namespace
{

constexpr UINT kLabelId = 0xFFFF;

struct Answer
{
    UINT id;
    const wchar_t* caption;
};

constexpr Answer kOk{IDOK, L"OK"};
constexpr Answer kCancel{IDCANCEL, L"Cancel"};
constexpr Answer kYes{IDYES, L"&Yes"};
constexpr Answer kNo{IDNO, L"&No"};

std::vector<Answer> AnswersOf(UINT type)
{
    switch (type & MB_TYPEMASK)
    {
    case MB_OK:
        return {kOk};
    case MB_OKCANCEL:
        return {kOk, kCancel};
    case MB_YESNOCANCEL:
        return {kYes, kNo, kCancel};
    case MB_YESNO:
        return {kYes, kNo};
    default:
        return {};
    }
}

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
    const std::vector<Answer> answers = AnswersOf(type);
    if (answers.empty())
        return nullptr;
    const std::size_t preselected = (type & MB_DEFBUTTON2) != 0 && answers.size() > 1 ? 1 : 0;

    DialogTemplate source;
    // The close box is Cancel; a question of yes or no has none.
    source.style = WS_POPUP | WS_CAPTION | ((type & MB_TYPEMASK) == MB_YESNO ? 0 : WS_SYSMENU);
    source.caption = caption;
    source.controls.push_back(MakeControl(ControlClass::Static, kLabelId, text, SS_LEFT));
    for (std::size_t i = 0; i < answers.size(); ++i)
        source.controls.push_back(
            MakeControl(ControlClass::Button, answers[i].id, answers[i].caption,
                        WS_TABSTOP | (i == preselected ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON)));
    std::unique_ptr<Window> box = MakeDialog(source);
    box->dialog->isMessageBox = true;
    box->dialog->messageBoxType = type;
    box->dialog->focus = box->children[1 + preselected].get();
    return box;
}

// Esc and the close box answer Cancel, or OK where that is the only button, and nothing else.
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

int Run(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type,
        std::optional<std::chrono::milliseconds> timeout)
{
    std::unique_ptr<Window> box =
        MakeMessageBox(text != nullptr ? text : L"", caption != nullptr ? caption : L"Error", type);
    if (box == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (!StartWindows())
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return 0;
    }
    return static_cast<int>(RunModal(std::move(box), {owner, &Procedure, 0, timeout}));
}

} // namespace

} // namespace platform

int MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type)
{
    return platform::Run(owner, text, caption, type, std::nullopt);
}

int MessageBoxTimeoutW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type, WORD, DWORD milliseconds)
{
    return platform::Run(owner, text, caption, type, std::chrono::milliseconds(milliseconds));
}
