// SPDX-License-Identifier: MIT
// One LDAP test with its walk, as from the dialog; the console's text is dropped. TAVO_LDAP_PORT is where the
// directory is. With a number, so many more, whose mean time in seconds is printed.
#include "ldap/LdapTest.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace
{

bool Test()
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
    return bound;
}

} // namespace

int main(int argc, char** argv)
{
    bool good = Test();
    const int more = argc > 1 ? std::atoi(argv[1]) : 0;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < more; ++i)
        good = Test() && good;
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    if (more > 0)
        std::printf("%.9f\n", passed.count() / more);
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
