// SPDX-License-Identifier: MIT
// The credentials dialog that ships, driven through its controls and keys.
#include "ldap/LDAPCreds.h"
#include "resources/resource.h"
#include "tests/support/WindowProbe.h"

#include <gtest/gtest.h>

namespace
{

constexpr UINT WM_STEP = WM_USER + 1;

class OpenCreds : public LDAPCreds
{
public:
    std::function<void(WPARAM step)> mStep;

    HWND Control(int id) const { return ::GetDlgItem(m_hWnd, id); }
    std::wstring Text(int id) const { return TextOf(Control(id)); }

protected:
    BOOL OnInitDialog() override
    {
        const BOOL result = LDAPCreds::OnInitDialog();
        PostMessageW(m_hWnd, WM_STEP, 0, 0);
        return result;
    }
    afx_msg LRESULT OnStep(WPARAM step, LPARAM)
    {
        mStep(step);
        return 0;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(OpenCreds, LDAPCreds)
ON_MESSAGE(WM_STEP, OnStep)
END_MESSAGE_MAP()

TEST(LdapCreds, GiveTheirCallerWhatTheDialogHoldsUnlessItIsCancelled)
{
    struct Case
    {
        int selection; // as it opens: 0
        const wchar_t* port;
        int focus;
        WORD key;
        INT_PTR result;
        DWORD method;
        DWORD portNumber;
        const wchar_t* selected;
    };
    constexpr Case kCases[] = {
        {0, nullptr, IDC_SERVER, VK_RETURN, IDOK, 0, 389, L"Try all"}, // as it opens
        {1, L"0", IDC_PASSWORD, VK_RETURN, IDOK, 1, 0, L"Simple bind - SSL"},
        {2, L"636", IDC_AUTH_METHOD, VK_RETURN, IDOK, 6, 636, L"Simple bind - plain text"},
        {3, L"4294967295", IDOK, VK_RETURN, IDOK, 3, 4294967295, L"NTLM"},
        {4, L" 7 ", IDC_PORT, VK_RETURN, IDOK, 4, 7, L"Digest"},
        {5, L"389", IDC_USER, VK_RETURN, IDOK, 5, 389, L"DPA"},
        {6, L"389", IDC_DOMAIN, VK_RETURN, IDOK, 7, 389, L"Negotiate"},
        {6, L"636", IDC_PORT, VK_ESCAPE, IDCANCEL, 0, 389, L"Negotiate"},
        {6, L"no number", IDCANCEL, VK_RETURN, IDCANCEL, 0, 389, L"Negotiate"},
    };
    const std::pair<int, ZTString LDAPCreds::*> kTexts[] = {{IDC_SERVER, &LDAPCreds::mServer},
                                                            {IDC_DOMAIN, &LDAPCreds::mDomain},
                                                            {IDC_USER, &LDAPCreds::mUser},
                                                            {IDC_PASSWORD, &LDAPCreds::mPassword}};
    for (const Case& test : kCases)
    {
        SCOPED_TRACE(test.selection);
        const auto typed = [&test](int id)
        { return test.port ? L"b\u00fc \U0001F600 " + std::to_wstring(id) : std::wstring(); };
        OpenCreds creds;
        creds.mStep = [&](WPARAM)
        {
            EXPECT_EQ(creds.Text(IDC_AUTH_METHOD), L"Try all");
            EXPECT_EQ(creds.Text(IDC_PORT), L"389");
            EXPECT_EQ(FocusedControl(), creds.Control(IDC_SERVER));
            for (const auto& [id, member] : kTexts)
            {
                EXPECT_EQ(creds.Text(id), L"");
                SetWindowTextW(creds.Control(id), typed(id).c_str());
            }
            if (test.port)
                SetWindowTextW(creds.Control(IDC_PORT), test.port);
            SendMessageW(creds.Control(IDC_AUTH_METHOD), CB_SETCURSEL, static_cast<WPARAM>(test.selection),
                         0);
            EXPECT_EQ(creds.Text(IDC_AUTH_METHOD), test.selected);
            PressKey(creds.m_hWnd, test.focus, test.key);
        };
        EXPECT_EQ(creds.DoModal(), test.result);
        EXPECT_EQ(creds.mAuthMethod, test.method);
        EXPECT_EQ(creds.mPort, test.portNumber);
        for (const auto& [id, member] : kTexts)
            EXPECT_EQ(std::wstring(creds.*member), test.result == IDOK ? typed(id) : L"") << id;
    }
}

} // namespace
