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

    INT_PTR Run();
};

// The body alone, in a dialog that ends after it.
void InDialog(const std::function<void(HWND)>& body);

LRESULT Send(HWND dialog, int id, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
LRESULT Send(HWND dialog, int id, UINT message, WPARAM wParam, const wchar_t* text);
