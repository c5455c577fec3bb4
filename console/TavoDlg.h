// SPDX-License-Identifier: MIT
// The console: the program's one main dialog. A read-only text box fills line by line, each text stamped
// with the milliseconds since gStartTick; the buttons start the actions of the other folders, whose handlers
// are members of this class. Everything here runs on the UI thread. A worker thread posts its texts.
#pragma once

#include "foundation/Oriska.h"
#include "framework/afxwin.h"

struct ldap; // a session of the LDAP client

// Starts a shipment (OnFtpLogs); both parameters are 0.
constexpr UINT WM_FTP_LOGS = WM_USER + 1;
// A console line from another thread: LPARAM is a wide text made with _wcsdup, which the message owns.
constexpr UINT WM_FTP_LINE = WM_USER + 2;

class CTavoDlg : public CDialog
{
public:
    explicit CTavoDlg(CWnd* parent = nullptr);

    // Puts "[{0:u}ms] " before the text, adds no line end, shows it and scrolls to the end, then serves the
    // waiting messages: handlers can nest, and this routine can be entered again from its own last step.
    void AppendLine(const wchar_t* text);

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;

    afx_msg void OnPaint();
    afx_msg HCURSOR OnQueryDragIcon();
    afx_msg void OnCloseButton();
    afx_msg void OnUnusedButton();
    afx_msg void OnFtpLogsButton();
    afx_msg LRESULT OnFtpLine(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnFtpLogs(WPARAM wParam, LPARAM lParam); // shipment/OnFtpLogs.cpp
    afx_msg void OnLdapTest();                               // ldap/OnLdapTest.cpp
    afx_msg void OnCrc64();                                  // crc64/OnCrc64.cpp
    DECLARE_MESSAGE_MAP()

private:
    // The environment report, step by step; console/EnvironmentReport.cpp.
    void ReportMachine();
    void ReportClock();
    void ReportTimeZone();
    void ReportNumbers();
    void ReportMacAddress();
    void ReportLocales();
    void ReportCustomerService();

    // Reads the switches of an unattended run and starts its shipment; shipment/UnattendedShipment.cpp. False
    // when another one is running and this dialog has been ended.
    bool StartUnattendedShipment();

    void WalkLdapTree(ldap* session); // ldap/OnLdapTest.cpp

    HICON mIcon; // shared, not destroyed
    ZTString mOutputText;
    CEdit mOutputEdit;
    DWORD mHiddenValue = 0;
    bool mAutoClose = false; // the end of a shipment closes the dialog
};

// The dialog's window, target of the posts of worker threads. Set when it opens, never cleared.
extern HWND gConsoleWnd;

// Base of the millisecond prefix, a GetTickCount value; set anew by each LDAP test.
extern DWORD gStartTick;
