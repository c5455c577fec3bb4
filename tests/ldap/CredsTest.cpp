// SPDX-License-Identifier: MIT
// The credentials dialog that ships, driven through its controls and keys.
#include "ldap/LDAPCreds.h"
#include "resources/resource.h"
#include "tests/support/WindowProbe.h"

#include <gtest/gtest.h>

constexpr UINT WM_STEP = WM_USER + 1;

class OpenCreds : public LDAPCreds
{
public:
    std::function<void()> mStep;

protected:
    BOOL OnInitDialog() override
    {
        PostMessageW(m_hWnd, WM_STEP, 0, 0);
        return LDAPCreds::OnInitDialog();
    }
    afx_msg LRESULT OnStep(WPARAM, LPARAM)
    {
        mStep();
        return 0;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(OpenCreds, LDAPCreds)
ON_MESSAGE(WM_STEP, OnStep)
END_MESSAGE_MAP()

TEST(LdapCreds, GiveTheirCallerWhatTheDialogHoldsUnlessItIsCancelled)
{
    // What is chosen and typed, the key and where; the result, and what the caller has then.
    const std::tuple<WPARAM, std::wstring, int, WORD, INT_PTR, DWORD, DWORD> rows[] = {
        {0, L"389", IDC_SERVER, VK_RETURN, IDOK, 0, 389},
        {2, L"636", IDC_AUTH_METHOD, VK_RETURN, IDOK, 6, 636},
        {6, L"4294967295", IDC_DOMAIN, VK_RETURN, IDOK, 7, 4294967295},
        {5, L"636", IDC_PORT, VK_ESCAPE, IDCANCEL, 0, 389},
        {1, L"no number", IDCANCEL, VK_RETURN, IDCANCEL, 0, 389},
    };
    for (const auto& [selection, port, focus, key, result, method, portNumber] : rows)
    {
        SCOPED_TRACE(selection);
        OpenCreds creds;
        creds.mStep = [&, dialog = &creds, selection = selection, port = port, focus = focus, key = key]
        {
            EXPECT_EQ(FocusedControl(), ::GetDlgItem(dialog->m_hWnd, IDC_SERVER));
            EXPECT_EQ(TextOf(::GetDlgItem(dialog->m_hWnd, IDC_AUTH_METHOD)), L"Try all");
            if (selection != 0) // with which it opens
                SendMessageW(::GetDlgItem(dialog->m_hWnd, IDC_AUTH_METHOD), CB_SETCURSEL, selection, 0);
            for (const int id : {IDC_SERVER, IDC_DOMAIN, IDC_USER, IDC_PASSWORD})
                SetWindowTextW(::GetDlgItem(dialog->m_hWnd, id),
                               (L"b\u00fc \U0001F600 " + std::to_wstring(id)).c_str());
            SetWindowTextW(::GetDlgItem(dialog->m_hWnd, IDC_PORT), port.c_str());
            PressKey(dialog->m_hWnd, focus, key);
        };
        EXPECT_EQ(creds.DoModal(), result);
        EXPECT_EQ(creds.mAuthMethod, method);
        EXPECT_EQ(creds.mPort, portNumber);
        for (const auto& [id, text] : {std::pair(IDC_SERVER, creds.mServer),
                                       {IDC_DOMAIN, creds.mDomain},
                                       {IDC_USER, creds.mUser},
                                       {IDC_PASSWORD, creds.mPassword}})
            EXPECT_EQ(std::wstring(text),
                      result == IDOK ? L"b\u00fc \U0001F600 " + std::to_wstring(id) : L"");
    }
}
