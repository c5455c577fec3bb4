// SPDX-License-Identifier: MIT
// A dialog on bare window calls, whose procedure is a function of the test.
#pragma once

#include "tests/support/WindowProbe.h"
#include "tests/dialogs/testIds.h"

#include <functional>

constexpr UINT WM_RUN = WM_USER + 1;  // runs the body
constexpr UINT WM_NOTE = WM_USER + 2; // for the test's own use

struct ScriptedDialog
{
    // Runs as a posted message, once the dialog is there. Ends the dialog or has it ended.
    std::function<void(HWND)> body = [](HWND) {};
    // Gets every other message first; true when it has served it.
    std::function<bool(HWND, UINT, WPARAM, LPARAM)> serve = [](HWND, UINT, WPARAM, LPARAM) { return false; };
    HWND owner = nullptr;

    INT_PTR Run()
    {
        return DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_CONTROLS), owner, &Procedure,
                               reinterpret_cast<LPARAM>(this));
    }

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
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
        if (message == WM_RUN)
            script->body(window);
        return message == WM_RUN;
    }
};

// The body alone, in a dialog that ends after it.
inline void InDialog(const std::function<void(HWND)>& body)
{
    ScriptedDialog dialog;
    dialog.body = [&](HWND window)
    {
        body(window);
        EndDialog(window, IDOK);
    };
    dialog.Run();
}

inline LRESULT Send(HWND dialog, int id, UINT message, WPARAM wParam = 0, const wchar_t* text = nullptr)
{
    return SendMessageW(GetDlgItem(dialog, id), message, wParam, reinterpret_cast<LPARAM>(text));
}

inline void AddToLog(HWND dialog, const std::wstring& text)
{
    const HWND log = GetDlgItem(dialog, IDC_LOG);
    SetWindowTextW(log, (TextOf(log) + text).c_str());
}
