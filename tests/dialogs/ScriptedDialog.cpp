// SPDX-License-Identifier: MIT
#include "tests/dialogs/ScriptedDialog.h"

namespace
{

INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
        SetWindowLongPtrW(window, DWLP_USER, lParam);
    auto* const script = reinterpret_cast<ScriptedDialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (script == nullptr)
        return FALSE;
    if (script->serve(window, message, wParam, lParam))
        return TRUE;
    if (message == WM_INITDIALOG)
        return PostMessageW(window, WM_RUN, 0, 0);
    if (message != WM_RUN)
        return FALSE;
    script->body(window);
    return TRUE;
}

} // namespace

INT_PTR ScriptedDialog::Run()
{
    return DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_CONTROLS), owner, &Procedure,
                           reinterpret_cast<LPARAM>(this));
}

void InDialog(const std::function<void(HWND)>& body)
{
    ScriptedDialog dialog;
    dialog.body = [&](HWND window)
    {
        body(window);
        EndDialog(window, IDOK);
    };
    dialog.Run();
}

LRESULT Send(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam)
{
    return SendMessageW(GetDlgItem(dialog, id), message, wParam, lParam);
}

LRESULT Send(HWND dialog, int id, UINT message, WPARAM wParam, const wchar_t* text)
{
    return Send(dialog, id, message, wParam, reinterpret_cast<LPARAM>(text));
}
