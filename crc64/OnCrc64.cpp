// SPDX-License-Identifier: MIT
#include "console/TavoDlg.h"
#include "crc64/DlgGetCRC64.h"

void CTavoDlg::OnCrc64()
{
    CDlgGetCRC64(this).DoModal();
}
