// SPDX-License-Identifier: MIT
#include "console/TavoDlg.h"

#include "foundation/Kelvane.h"
#include "foundation/StaticOrder.h"
#include "resources/resource.h"

#include <cstdlib>

HWND gConsoleWnd = nullptr;
DWORD gStartTick = 0;

namespace
{

// Only objects of class type can be ordered.
struct StartTick
{
    StartTick() { gStartTick = GetTickCount(); }
};
[[gnu::init_priority(kStaticStartTick)]] const StartTick kTakeStartTick;

} // namespace

BEGIN_MESSAGE_MAP(CTavoDlg, CDialog)
ON_WM_PAINT()
ON_WM_QUERYDRAGICON()
ON_BN_CLICKED(IDC_CLOSE, OnCloseButton)
ON_BN_CLICKED(IDC_LDAP, OnLdapTest)
ON_BN_CLICKED(IDC_STEP_NET_MAP, OnUnusedButton)
ON_BN_CLICKED(IDC_FULL_MAP, OnUnusedButton)
ON_MESSAGE(WM_FTP_LOGS, OnFtpLogs)
ON_MESSAGE(WM_FTP_LINE, OnFtpLine)
ON_BN_CLICKED(IDC_FTP_LOGS, OnFtpLogsButton)
ON_BN_CLICKED(IDC_CRC64, OnCrc64)
END_MESSAGE_MAP()

CTavoDlg::CTavoDlg(CWnd* parent) : CDialog(IDD_CONSOLE, parent)
{
    const HINSTANCE module = AfxFindResourceHandle(MAKEINTRESOURCEW(IDI_TAVO), RT_GROUP_ICON);
    mIcon = LoadIconW(module, MAKEINTRESOURCEW(IDI_TAVO));
}

void CTavoDlg::AppendLine(const wchar_t* text)
{
    UpdateData(TRUE);
    const DWORD elapsed = GetTickCount() - gStartTick;
    mOutputText += _StrFormat(L"[{0:u}ms] ", {elapsed});
    mOutputText += text;
    UpdateData(FALSE);
    UpdateWindow();
    const LRESULT lines = SendMessageW(mOutputEdit.m_hWnd, EM_GETLINECOUNT, 0, 0);
    SendMessageW(mOutputEdit.m_hWnd, EM_LINESCROLL, 0, lines);
    PumpMessages(nullptr, 0);
}

void CTavoDlg::DoDataExchange(CDataExchange* pDX)
{
    DDX_Text(pDX, IDC_OUTPUT, mOutputText);
    DDX_Control(pDX, IDC_OUTPUT, mOutputEdit);
    DDX_Text(pDX, IDC_HIDDEN_VALUE, mHiddenValue);
}

void CTavoDlg::OnPaint()
{
    if (!IsIconic())
    {
        CDialog::OnPaint();
        return;
    }
    CPaintDC dc(this);
    SendMessageW(m_hWnd, WM_ICONERASEBKGND, reinterpret_cast<WPARAM>(dc.m_hDC), 0);
    const int iconWidth = GetSystemMetrics(SM_CXICON);
    const int iconHeight = GetSystemMetrics(SM_CYICON);
    RECT client{};
    GetClientRect(&client);
    const int x = (static_cast<int>(client.right - client.left) - iconWidth + 1) / 2;
    const int y = (static_cast<int>(client.bottom - client.top) - iconHeight + 1) / 2;
    DrawIcon(dc.m_hDC, x, y, mIcon);
}

HCURSOR CTavoDlg::OnQueryDragIcon()
{
    return mIcon;
}

void CTavoDlg::OnCloseButton()
{
    EndDialog(1);
}

void CTavoDlg::OnUnusedButton() {}

void CTavoDlg::OnFtpLogsButton()
{
    SetFocus(mOutputEdit.m_hWnd); // a disabled window that has it keeps the keyboard from the dialog
    GetDlgItem(IDC_FTP_LOGS)->EnableWindow(FALSE);
    PostMessageW(m_hWnd, WM_FTP_LOGS, 0, 0);
}

LRESULT CTavoDlg::OnFtpLine(WPARAM, LPARAM lParam)
{
    wchar_t* text = reinterpret_cast<wchar_t*>(lParam);
    AppendLine(text);
    std::free(text);
    return 0;
}
