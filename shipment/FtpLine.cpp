// SPDX-License-Identifier: MIT
#include "shipment/FtpLine.h"

#include "console/TavoDlg.h"

#include <wchar.h>

void PostFtpLine(const ZTString& line)
{
    PostMessageW(gConsoleWnd, WM_FTP_LINE, 0, reinterpret_cast<LPARAM>(_wcsdup(line)));
}
