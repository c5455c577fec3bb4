// SPDX-License-Identifier: MIT
#include "app/WatchForEnd.h"

#include "foundation/EndOfRun.h"

#include <windows.h>

#include <atomic>
#include <cstdlib>

namespace
{

BOOL WINAPI OnEnding(DWORD event)
{
    EndRun(event == CTRL_C_EVENT       ? L"ended by SIGINT"
           : event == CTRL_BREAK_EVENT ? L"ended by SIGQUIT"
           : event == CTRL_CLOSE_EVENT ? L"ended by SIGHUP"
                                       : L"ended by SIGTERM");
    return FALSE; // the process ends
}

std::atomic<bool> gbIsWatching = false;

void OnExit()
{
    if (!gbIsWatching)
        return;
    EndRun(L"ended by a library: the display is gone");
    std::_Exit(EXIT_FAILURE); // other threads are at work still
}

} // namespace

EndWatch::EndWatch()
{
    SetConsoleCtrlHandler(OnEnding, TRUE);
    gbIsWatching = std::atexit(OnExit) == 0 && std::at_quick_exit(OnExit) == 0;
}

EndWatch::~EndWatch()
{
    gbIsWatching = false;
}
