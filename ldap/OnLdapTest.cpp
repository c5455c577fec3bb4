// SPDX-License-Identifier: MIT
#include "console/TavoDlg.h"
#include "ldap/LdapTest.h"
#include "ldap/Secrecy.h"

void CTavoDlg::OnLdapTest()
{
    KeepMemoryToOurselves();
    LDAPCreds creds(this);
    if (creds.DoModal() != IDOK)
        return;
    gStartTick = GetTickCount();
    TestLdapServer(
        creds, [this](const wchar_t* text) { AppendLine(text); },
        [this](LDAP* session) { WalkLdapTree(session); });
}

void CTavoDlg::WalkLdapTree(ldap* session)
{
    ::WalkLdapTree(
        session, [this](const wchar_t* text) { AppendLine(text); });
}
