// SPDX-License-Identifier: MIT
// The console's buttons while a bind waits for its server.
#include "console/TavoDlg.h"
#include "ldap/LdapTest.h"
#include "resources/resource.h"
#include "tests/support/LdapPeer.h"
#include "tests/support/WindowProbe.h"

#include <gtest/gtest.h>

namespace
{

constexpr UINT WM_CANCEL_TOP = WM_USER + 100;
constexpr INT_PTR kLeftOpen = 7;

// Tests the directory of a port before it serves anything else.
class TestingConsole : public CTavoDlg
{
public:
    TestingConsole(unsigned port, bool staysOpen) : mPort(port), mStaysOpen(staysOpen) {}
    std::wstring mWritten;

protected:
    BOOL OnInitDialog() override
    {
        const BOOL result = CTavoDlg::OnInitDialog();
        LDAPCreds creds;
        creds.mServer = L"127.0.0.1";
        creds.mPort = mPort;
        creds.mAuthMethod = eLDAPAuthSimplePlain;
        const auto append = [this](const wchar_t* text)
        {
            mWritten += text;
            AppendLine(text);
        };
        TestLdapServer(creds, append, [](LDAP*) {});
        if (mStaysOpen)
            EndDialog(kLeftOpen);
        return result;
    }
    afx_msg LRESULT OnCancelTop(WPARAM, LPARAM)
    {
        PostMessageW(TopWindow(), WM_COMMAND, IDCANCEL, 0);
        return 0;
    }
    DECLARE_MESSAGE_MAP()

private:
    unsigned mPort;
    bool mStaysOpen;
};

BEGIN_MESSAGE_MAP(TestingConsole, CTavoDlg)
ON_MESSAGE(WM_CANCEL_TOP, OnCancelTop)
END_MESSAGE_MAP()

TEST(ButtonsDuringABind, AreServedAfterItAndTheTestGoesOnToItsEnd)
{
    struct Case
    {
        int button;
        INT_PTR result;
        bool opens; // a dialog, which is then cancelled
    };
    for (const Case& test : {Case{IDC_CLOSE, 1, false}, Case{IDCANCEL, IDCANCEL, false},
                             Case{IDC_LDAP, kLeftOpen, true}, Case{IDC_CRC64, kLeftOpen, true}})
    {
        SCOPED_TRACE(test.button);
        const LdapPeer peer(
            [&test](LdapPeer::Connection& connection)
            {
                connection.ReadRequest();
                PostMessageW(gConsoleWnd, WM_COMMAND,
                             static_cast<WPARAM>(MAKEWPARAM(test.button, BN_CLICKED)), 0);
                if (test.opens)
                    PostMessageW(gConsoleWnd, WM_CANCEL_TOP, 0, 0);
                connection.SendMessage(LdapPeer::Connection::Result(0x61, 0x31));
                connection.ReadRequest();
            });
        TestingConsole console(peer.Port(), test.opens);
        EXPECT_EQ(console.DoModal(), test.result);
        EXPECT_TRUE(console.mWritten.ends_with(L"failed (00000031)\r\nInvalid Credentials\r\nEND TEST\r\n"));
    }
}

} // namespace
