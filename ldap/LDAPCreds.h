// SPDX-License-Identifier: MIT
// The dialog that asks what the LDAP test is to try. The answers stay in its members for the caller; nothing
// is remembered from one test to the next.
#pragma once

#include "foundation/Oriska.h"
#include "framework/afxwin.h"
#include "ldap/LdapMethods.h"

class LDAPCreds : public CDialog
{
    DECLARE_DYNAMIC(LDAPCreds)

public:
    explicit LDAPCreds(CWnd* parent = nullptr);
    ~LDAPCreds() override;
    LDAPCreds(const LDAPCreds&) = delete;
    LDAPCreds& operator=(const LDAPCreds&) = delete;

    ZTString mServer;
    ZTString mUser;
    ZTString mPassword; // overwritten in the end
    CComboBox mAuthCombo;
    DWORD mAuthMethod = eLDAPAuthTryAll; // valid after OnOK
    DWORD mPort = 389;                   // 0 stands for the method's usual one
    ZTString mDomain;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void OnOK() override;
    DECLARE_MESSAGE_MAP()
};
