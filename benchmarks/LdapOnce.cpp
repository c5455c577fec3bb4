// SPDX-License-Identifier: MIT
// One LDAP test with its walk, as from the dialog; the console's text is dropped. TAVO_LDAP_PORT is where the
// directory is.
#include "ldap/LdapTest.h"

#include <cstdlib>

int main()
{
    LDAPCreds creds;
    creds.mServer = L"127.0.0.1";
    creds.mPort = static_cast<DWORD>(std::atoi(std::getenv("TAVO_LDAP_PORT")));
    creds.mUser = L"cn=alice,dc=one,dc=example";
    creds.mPassword = L"wonderland";
    creds.mAuthMethod = eLDAPAuthSimplePlain;
    const LdapConsole console = [](const wchar_t*) {};
    bool bound = false;
    TestLdapServer(creds, console,
                   [&](LDAP* session)
                   {
                       bound = true;
                       WalkLdapTree(session, console);
                   });
    return bound ? EXIT_SUCCESS : EXIT_FAILURE;
}
