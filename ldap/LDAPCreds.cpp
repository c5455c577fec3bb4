// SPDX-License-Identifier: MIT
#include "ldap/LDAPCreds.h"

#include "ldap/Secrecy.h"
#include "resources/resource.h"

IMPLEMENT_DYNAMIC(LDAPCreds, CDialog)

BEGIN_MESSAGE_MAP(LDAPCreds, CDialog)
END_MESSAGE_MAP()

LDAPCreds::LDAPCreds(CWnd* parent) : CDialog(IDD_LDAP_CREDS, parent) {}

LDAPCreds::~LDAPCreds()
{
    Wipe(mPassword);
}

void LDAPCreds::DoDataExchange(CDataExchange* pDX)
{
    // What is typed after a refused value may be shorter, or need another place.
    if (pDX->m_bSaveAndValidate)
        Wipe(mPassword);
    DDX_Text(pDX, IDC_SERVER, mServer);
    DDX_Text(pDX, IDC_USER, mUser);
    DDX_Text(pDX, IDC_PASSWORD, mPassword);
    DDX_Control(pDX, IDC_AUTH_METHOD, mAuthCombo);
    DDX_Text(pDX, IDC_PORT, mPort);
    DDX_Text(pDX, IDC_DOMAIN, mDomain);
}

BOOL LDAPCreds::OnInitDialog()
{
    CDialog::OnInitDialog();
    mAuthCombo.SetItemData(mAuthCombo.AddString(L"Try all"), eLDAPAuthTryAll);
    for (const LdapMethod& method : kLdapMethods)
        mAuthCombo.SetItemData(mAuthCombo.AddString(method.text), method.number);
    mAuthCombo.SetCurSel(0);
    return 1;
}

void LDAPCreds::OnOK()
{
    mAuthMethod = static_cast<DWORD>(mAuthCombo.GetItemData(mAuthCombo.GetCurSel()));
    CDialog::OnOK();
}
