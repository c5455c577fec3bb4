// SPDX-License-Identifier: MIT
#include "app/WatchForEnd.h"

#include "foundation/EndOfRun.h"

#include <windows.h>
#include <process.h>

namespace
{

constexpr const wchar_t* kClass = L"TavoSessionEnd";

LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CLOSE) // taskkill posts it to every window of a process
        return 0;
    if (message != WM_ENDSESSION || wParam == FALSE)
        return DefWindowProcW(window, message, wParam, lParam);
    EndRun(L"ended with the session");
    ExitProcess(0);
}

// A window that is never shown, with a message loop of its own: the main thread may be busy for long.
void __cdecl WatchSession(void*)
{
    WNDCLASSW type{};
    type.lpfnWndProc = OnMessage;
    type.hInstance = GetModuleHandleW(nullptr);
    type.lpszClassName = kClass;
    RegisterClassW(&type);
    CreateWindowExW(0, kClass, nullptr, WS_OVERLAPPED, 0, 0, 0, 0, nullptr, nullptr, type.hInstance, nullptr);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
}

} // namespace

EndWatch::EndWatch()
{
    _beginthread(WatchSession, 0, nullptr);
}

EndWatch::~EndWatch() = default;
