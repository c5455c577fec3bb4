// SPDX-License-Identifier: MIT
#include "crc64/DlgGetCRC64.h"

#include "crc64/TextChecksum.h"
#include "resources/resource.h"

BEGIN_MESSAGE_MAP(CDlgGetCRC64, CDialog)
ON_WM_PAINT()
ON_BN_CLICKED(IDC_GET_CRC64, OnGetCRC64)
END_MESSAGE_MAP()

CDlgGetCRC64::CDlgGetCRC64(CWnd* parent) : CDialog(IDD_CRC64, parent) {}

void CDlgGetCRC64::DoDataExchange(CDataExchange* pDX)
{
    DDX_Text(pDX, IDC_INPUT, mInput);
    DDX_Check(pDX, IDC_WIDE_CHARS, mWideChars);
    DDX_Text(pDX, IDC_CRC, mCRC);
    DDX_Text(pDX, IDC_CRC_HEX, mCRCHex);
}

BOOL CDlgGetCRC64::OnInitDialog()
{
    // Until told otherwise a box takes no more than 32767 characters from the keyboard and the clipboard.
    SendMessageW(GetDlgItem(IDC_INPUT)->m_hWnd, EM_LIMITTEXT, 0, 0);
    return CDialog::OnInitDialog();
}

void CDlgGetCRC64::OnPaint()
{
    CDialog::OnPaint();
}

void CDlgGetCRC64::OnGetCRC64()
{
    UpdateData(TRUE);
    const std::uint64_t checksum =
        mWideChars != 0 ? ChecksumOfWideText(mInput) : ChecksumOfNarrowText(mInput);
    mCRC.Format(L"{0}", checksum);
    mCRCHex.Format(L"{0:08X}", checksum);
    UpdateData(FALSE);
}
