// SPDX-License-Identifier: MIT
#include "app/WatchForEnd.h"

#include "foundation/EndOfRun.h"

#include <windows.h>

namespace
{

BOOL WINAPI OnEnding(DWORD event)
{
    EndRun(event == CTRL_C_EVENT       ? L"ended by SIGINT"
           : event == CTRL_CLOSE_EVENT ? L"ended by SIGHUP"
                                       : L"ended by SIGTERM");
    return FALSE; // the process ends
}

} // namespace

void WatchForEnd()
{
    SetConsoleCtrlHandler(OnEnding, TRUE);
}
