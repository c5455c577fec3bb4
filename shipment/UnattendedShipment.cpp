// SPDX-License-Identifier: MIT
// The start of a shipment that the command line asks for, and the refusal of a second one beside it.
#include "app/CmdLineParser.h"
#include "console/TavoDlg.h"
#include "foundation/OpenAccess.h"

bool CTavoDlg::StartUnattendedShipment()
{
    if (gCmdLineParser.HasVal(L"AUTOCLOSE"))
        mAutoClose = true;
    if (!gCmdLineParser.HasVal(L"FTP_LOG"))
        return true;
    if (mAutoClose)
    {
        // Only the name's existence counts; the handle lives until the process ends.
        CreateEventW(OpenAccessAttributes(), FALSE, FALSE, L"Global\\Tavo_FTP");
        if (GetLastError() == ERROR_ALREADY_EXISTS)
        {
            EndDialog(1);
            return false;
        }
    }
    OnFtpLogsButton();
    return true;
}
