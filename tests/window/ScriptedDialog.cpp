// SPDX-License-Identifier: MIT
#include "tests/window/ScriptedDialog.h"

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
    return DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(templateId), owner, &Procedure,
                           reinterpret_cast<LPARAM>(this));
}

INT_PTR InDialog(const std::function<void(HWND)>& body)
{
    ScriptedDialog dialog;
    dialog.body = [&](HWND window)
    {
        body(window);
        EndDialog(window, IDOK);
    };
    return dialog.Run();
}

LRESULT Send(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam)
{
    return SendMessageW(GetDlgItem(dialog, id), message, wParam, lParam);
}

LRESULT Send(HWND dialog, int id, UINT message, WPARAM wParam, const wchar_t* text)
{
    return Send(dialog, id, message, wParam, reinterpret_cast<LPARAM>(text));
}

std::wstring TextOf(HWND window)
{
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)), L'\0');
    const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()) + 1);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

void Pump()
{
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
    {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}
