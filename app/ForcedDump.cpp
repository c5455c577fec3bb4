// SPDX-License-Identifier: MIT
#include "app/RunModes.h"

#include "app/CmdLineParser.h"
#include "foundation/EndOfRun.h"
#include "foundation/OpenAccess.h"
#include "foundation/Veld.h"

#include <windows.h>

namespace
{

// Long enough for a service that polls the event every few seconds.
constexpr DWORD kSignalMilliseconds = 6000;

bool ConfirmForcedDump()
{
    return MessageBoxW(
               nullptr,
               L"Continuing will cause a controlled crash of the monitoring service in order to create a "
               L"debug "
               L"dump file.  You can restart the service (if it doesn't start again by itself).\r\n\r\n"
               L"Are you sure you want to force the service to crash?",
               L"Confirm Forced Dump", MB_YESNO) == IDYES;
}

void SetForAWhile(HANDLE event)
{
    const AtEndOfRun reset([event] { ResetEvent(event); });
    SetEvent(event);
    Sleep(kSignalMilliseconds);
    ResetEvent(event);
}

} // namespace

const wchar_t* RunForcedDump()
{
    const bool silent = gCmdLineParser.HasKey(L"FORCE_DEBUG_DUMP_SILENT");
    if (!silent && !ConfirmForcedDump())
        return L"got FORCE_DEBUG_DUMP";

    const HANDLE event = CreateEventW(OpenAccessAttributes(), TRUE, FALSE, FORCE_CORE_EVENT);
    if (event != nullptr)
    {
        SetForAWhile(event);
        CloseHandle(event);
        if (!silent)
            MessageBoxW(
                nullptr,
                L"Triggered debug dump.  The .dmp file should be in the log directory in just a moment.",
                L"Success", MB_OK);
    }
    return L"got FORCE_DEBUG_DUMP_SILENT";
}
