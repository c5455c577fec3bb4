// SPDX-License-Identifier: MIT
// The credentials dialog that ships; the tests against servers show what it hands on.
#include "ldap/LDAPCreds.h"
#include "resources/resource.h"
#include "tests/support/WindowProbe.h"

#include <gtest/gtest.h>

class OpenCreds : public LDAPCreds
{
    BOOL OnInitDialog() override
    {
        PostMessageW(m_hWnd, WM_COMMAND, IDOK, 0);
        return LDAPCreds::OnInitDialog();
    }
    void OnOK() override
    {
        EXPECT_EQ(FocusedControl(), ::GetDlgItem(m_hWnd, IDC_SERVER));
        LDAPCreds::OnOK();
    }
};

TEST(LdapCreds, OpenWithTheKeyboardAtTheServer)
{
    EXPECT_EQ(OpenCreds().DoModal(), IDOK);
}
