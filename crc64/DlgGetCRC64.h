// SPDX-License-Identifier: MIT
// The checksum tool: a modal dialog that shows the product's checksum of a typed text in decimal and in
// hexadecimal. It keeps nothing between two openings.
#pragma once

#include "foundation/Oriska.h"
#include "framework/afxwin.h"

class CDlgGetCRC64 : public CDialog
{
public:
    explicit CDlgGetCRC64(CWnd* parent = nullptr);

    ZTString mInput;
    ZTString mCRC;
    ZTString mCRCHex;
    int mWideChars = 1; // the check box: 0 off, else on

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;

    afx_msg void OnPaint();
    afx_msg void OnGetCRC64();
    DECLARE_MESSAGE_MAP()
};
