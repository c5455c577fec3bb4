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
    // Each a message of its own, posted before the one in front runs.
    std::vector<std::function<void()>> mSteps;
    HWND Control(int id) const { return ::GetDlgItem(m_hWnd, id); }

protected:
    BOOL OnInitDialog() override
    {
        PostMessageW(m_hWnd, WM_STEP, 0, 0);
        return LDAPCreds::OnInitDialog();
    }
    afx_msg LRESULT OnStep(WPARAM number, LPARAM)
    {
        if (number + 1 < mSteps.size())
            PostMessageW(m_hWnd, WM_STEP, number + 1, 0);
        mSteps[number]();
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
        {0, L"0", IDC_USER, VK_RETURN, IDOK, 0, 0},
        {0, L" \t636 ", IDOK, VK_RETURN, IDOK, 0, 636},
        {0, L"0000000000000007", IDC_PASSWORD, VK_RETURN, IDOK, 0, 7},
        {5, L"636", IDC_PORT, VK_ESCAPE, IDCANCEL, 0, 389},
        {1, L"no number", IDCANCEL, VK_RETURN, IDCANCEL, 0, 389},
    };
    for (const auto& [selection, port, focus, key, result, method, portNumber] : rows)
    {
        SCOPED_TRACE(testing::PrintToString(port) + " and method " + std::to_string(selection));
        OpenCreds creds;
        const auto fillAndPress = [&, selection = selection, port = port, focus = focus, key = key]
        {
            EXPECT_EQ(FocusedControl(), creds.Control(IDC_SERVER));
            EXPECT_EQ(TextOf(creds.Control(IDC_AUTH_METHOD)), L"Try all");
            if (selection != 0) // with which it opens
                SendMessageW(creds.Control(IDC_AUTH_METHOD), CB_SETCURSEL, selection, 0);
            for (const int id : {IDC_SERVER, IDC_DOMAIN, IDC_USER, IDC_PASSWORD})
                SetWindowTextW(creds.Control(id), (L"b\u00fc \U0001F600 " + std::to_wstring(id)).c_str());
            SetWindowTextW(creds.Control(IDC_PORT), port.c_str());
            PressKey(focus, key);
        };
        creds.mSteps = {fillAndPress};
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

TEST(LdapCreds, StayOpenWithATextThatIsNoPortSelectedAndTakeNothingAfterIt)
{
    OpenCreds creds; // opened again and again
    // One is 1 in 64 bits, the last has digits of another script.
    for (const wchar_t* refused : {L"", L"  ", L"ldap", L"-1", L"4294967296", L"18446744073709551617",
                                   L"389x", L"3 89", L"0x10", L"1.5", L"\xFF13\xFF18\xFF19"})
    {
        creds.mServer = L"";
        const auto refuse = [&]
        {
            SetWindowTextW(creds.Control(IDC_SERVER), L"before");
            SetWindowTextW(creds.Control(IDC_PORT), refused);
            SetWindowTextW(creds.Control(IDC_DOMAIN), L"after");
            SendMessageW(creds.m_hWnd, WM_COMMAND, IDOK, 0);
        };
        const auto readTheBox = [&]
        {
            EXPECT_EQ(TextOf(TopWindow()), L"ldap_dialog_tests"); // no application tells its name
            EXPECT_TRUE(creds.EnableWindow(FALSE)) << "it was disabled";
            EXPECT_EQ(TextOf(GetDlgItem(TopWindow(), kMessageBoxText)), L"Please enter a positive integer.");
            SendMessageW(TopWindow(), WM_COMMAND, IDOK, 0);
        };
        const auto lookAndCancel = [&]
        {
            EXPECT_EQ(FocusedControl(), creds.Control(IDC_PORT));
            EXPECT_EQ(FocusedSelection(), refused);
            creds.EndDialog(IDCANCEL);
        };
        creds.mSteps = {refuse, [] {}, readTheBox, lookAndCancel}; // the box comes in the second's time
        EXPECT_EQ(creds.DoModal(), IDCANCEL) << refused;
        EXPECT_STREQ(creds.mServer, L"before");
        EXPECT_EQ(creds.mPort, 389u) << refused;
        EXPECT_STREQ(creds.mDomain, L"");
    }
}
