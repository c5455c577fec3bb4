// SPDX-License-Identifier: MIT
#include "tests/display/Scenarios.h"

#include "platform/display/Display.h"
#include "tests/window/ScriptedDialog.h"

#include <ctime>
#include <map>
#include <string>
#include <thread>

namespace
{

constexpr UINT WM_NOTE = WM_USER + 2;

void AddToLog(HWND dialog, const std::wstring& text)
{
    const HWND log = GetDlgItem(dialog, IDC_LOG);
    SetWindowTextW(log, (TextOf(log) + text).c_str());
}

// Shows in its log every command that it gets and what its controls then hold.
bool TraceCommands(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG)
    {
        for (const wchar_t* item : {L"Red", L"Green", L"Green-blue"})
            Send(dialog, IDC_CHOICE, CB_ADDSTRING, 0, item);
        Send(dialog, IDC_CHOICE, CB_SETCURSEL, 0);
        return false;
    }
    if (message != WM_COMMAND || HIWORD(wParam) != BN_CLICKED)
        return false;
    AddToLog(dialog, std::to_wstring(LOWORD(wParam)) + L" " + TextOf(GetDlgItem(dialog, IDC_LINE)) + L"|" +
                         TextOf(GetDlgItem(dialog, IDC_CHOICE)) + L"|" +
                         std::to_wstring(Send(dialog, IDC_BOX, BM_GETCHECK)) + L"\r\n");
    if (LOWORD(wParam) == IDCANCEL)
        EndDialog(dialog, IDCANCEL);
    return true;
}

void Commands()
{
    ScriptedDialog script;
    script.serve = TraceCommands;
    script.body = [](HWND) {};
    script.Run();
}

// The button opens another dialog on top of this one.
void Nested()
{
    ScriptedDialog script;
    script.serve = [](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_COMMAND && LOWORD(wParam) == IDC_PUSH)
        {
            ScriptedDialog inner;
            inner.owner = dialog;
            inner.serve = TraceCommands;
            inner.body = [](HWND window) { SetWindowTextW(window, L"Inner"); };
            inner.Run();
        }
        return TraceCommands(dialog, message, wParam, lParam);
    };
    script.body = [](HWND) {};
    script.Run();
}

// A long handler is posted before input has ended, and serves messages while it works.
void LongHandler()
{
    ScriptedDialog script;
    script.serve = [](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_INITDIALOG)
        {
            AddToLog(dialog, L"opens\r\n");
            Pump();
            PostMessageW(dialog, WM_NOTE, 0, 0);
        }
        if (message != WM_NOTE)
            return TraceCommands(dialog, message, wParam, lParam);
        for (int i = 0; i < 5; ++i)
        {
            AddToLog(dialog, L"works\r\n");
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            Pump();
        }
        AddToLog(dialog, L"is done\r\n");
        return true;
    };
    script.body = [](HWND) {};
    script.Run();
}

void OddText()
{
    ScriptedDialog script;
    script.body = [](HWND dialog)
    {
        AddToLog(dialog, L"\x1b]0;title\a\x7f\x9b");
        AddToLog(dialog, L"31m\ttab\rback\r");
        AddToLog(dialog, L"\n\u00e4\u20ac\U0001F600\xDC00.\r\n");
        EndDialog(dialog, 1);
    };
    script.Run();
}

// The program changes boxes; only those that can be seen and are not as they were are news.
void Changes()
{
    ScriptedDialog script;
    script.body = [](HWND dialog)
    {
        AddToLog(dialog, L"a line left open");
        SetWindowTextW(GetDlgItem(dialog, IDC_LINE), L"new");
        SetWindowTextW(GetDlgItem(dialog, IDC_LINE), L"new");
        SetWindowTextW(GetDlgItem(dialog, IDC_HIDDEN), L"unseen");
        Send(dialog, IDC_BOX, BM_SETCHECK, BST_CHECKED);
        AddToLog(dialog, L", its rest\r\n");
        SetWindowTextW(GetDlgItem(dialog, IDC_LOG), L"all anew\r\n");
        EndDialog(dialog, 1);
    };
    script.Run();
}

void MessageBoxes()
{
    InDialog(
        [](HWND dialog)
        {
            for (const UINT type : {MB_YESNO, MB_OK, MB_OKCANCEL, MB_YESNOCANCEL})
            {
                const int answer = MessageBoxW(dialog, L"Sure?\r\nReally?", L"Question", type);
                AddToLog(dialog, L"answer " + std::to_wstring(answer) + L"\r\n");
            }
        });
}

// A second of waiting costs next to no processor time.
void Idle()
{
    InDialog(
        [](HWND dialog)
        {
            const std::clock_t before = std::clock();
            MessageBoxTimeoutW(dialog, L"Waits", L"Idle", MB_OK, 0, 1000);
            const double seconds = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
            AddToLog(dialog, seconds < 0.1 ? L"idle\r\n" : L"busy " + std::to_wstring(seconds) + L"\r\n");
        });
}

void MuchText()
{
    InDialog(
        [](HWND dialog)
        {
            for (int i = 0; i < 300; ++i)
                AddToLog(dialog, std::wstring(300, L'x') + std::to_wstring(i) + L"\r\n");
        });
}

} // namespace

int RunScenario(std::string_view name)
{
    const std::map<std::string_view, void (*)()> scenarios = {
        {"commands", Commands}, {"nested", Nested}, {"long handler", LongHandler}, {"odd text", OddText},
        {"changes", Changes},   {"idle", Idle},     {"much text", MuchText},       {"boxes", MessageBoxes},
    };
    if (!platform::UseDisplay(platform::DisplayKind::Terminal))
        return 1;
    scenarios.at(name)();
    return 0;
}
