// SPDX-License-Identifier: MIT
// The test of a server against a peer that plays a script: each append on its own, and what a hostile peer
// costs.
#include "ldap/LdapTest.h"
#include "tests/support/LdapPeer.h"
#include "tests/support/OwnNetwork.h"

#include <winldap.h>

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace
{

using Connection = LdapPeer::Connection;
using Script = std::function<void(Connection&)>;
using Appends = std::vector<std::wstring>;

// Of the test that runs; what is given back to the client stands among them.
Appends* gAppends = nullptr;

template <class Argument>
ULONG GiveBack(const char* name, Argument argument, const wchar_t* note)
{
    if (note != nullptr)
        gAppends->emplace_back(note);
    return reinterpret_cast<ULONG (*)(Argument)>(dlsym(RTLD_NEXT, name))(argument);
}

} // namespace

// In the place of the client's own, to which they lead.
ULONG ldap_value_freeW(PWCHAR* values)
{
    return GiveBack("ldap_value_freeW", values, values == nullptr ? L"(no list is given back)" : nullptr);
}

ULONG ldap_msgfree(LDAPMessage* result)
{
    return GiveBack("wldap32_ldap_msgfree", result, L"(the result is given back)");
}

namespace
{

constexpr unsigned char kBindResponse = 0x61;
constexpr unsigned char kSearchDone = 0x65;

Appends Tested(const wchar_t* server, unsigned port, eLDAPAuthMethod method)
{
    LDAPCreds creds;
    creds.mServer = server;
    creds.mDomain = L"EXAMPLE";
    creds.mUser = L"cn=user";
    creds.mPassword = L"password";
    creds.mPort = port;
    creds.mAuthMethod = method;
    Appends appends;
    gAppends = &appends;
    const LdapConsole append = [&appends](const wchar_t* text) { appends.emplace_back(text); };
    TestLdapServer(creds, append, [&append](LDAP* session) { WalkLdapTree(session, append); });
    return appends;
}

Appends operator+(Appends left, const Appends& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Appends Framed(const std::wstring& server, const Appends& attempt)
{
    return Appends{L"\r\n========= LDAP =========\r\n", L"Server: " + server + L"\r\n",
                   L"Domain: EXAMPLE\r\n", L"User: cn=user\r\n", L"\r\n"} +
           attempt + Appends{L"END TEST\r\n"};
}

const Appends kOpened = {
    L"ldap_init begin ... ", L"end\r\n", L"Set TCP keep alive - succeeded (00000000)\r\n",
    L"Set no follow referrals - succeeded (00000000)\r\n", L"ldap_connect(127.0.0.1) begin ..."};
const Appends kBinding =
    kOpened + Appends{L"succeeded (00000000)\r\n", L"Set protocol ver=3 - succeeded (00000000)\r\n",
                      L"Set timeout (15 sec) - succeeded (00000000)\r\n",
                      L"ldap_bind_s(plain text) begin ..."};
const Appends kBound = kBinding + Appends{L"succeeded (00000000)\r\n"};
const std::wstring kRoot = L"ldap_search_s[Scope=base, filter=(objectClass=*)] begin ...";
const std::wstring kChildren = L"ldap_search_s[Scope=one_level, filter=(objectClass=*)] begin ...";

Appends Found(const std::wstring& search, int objects)
{
    return {search, L"succeeded (00000000)\r\n", L"(the result is given back)",
            L"Got " + std::to_wstring(objects) + L" objects back\r\n"};
}

// Answers a bind and then each search with what it finds and the code that ends it.
struct Answer
{
    std::vector<std::vector<Connection::Attribute>> entries;
    unsigned char code = 0;
    std::string odd{}; // an operation before them
};

// An entry whose one attribute has a name and nothing else.
const std::string kValuesUnreadable =
    BerElementOf(0x64, BerText("dc=odd") + BerElementOf(0x30, BerElementOf(0x30, BerText("dc"))));

Script Searched(const std::vector<Answer>& answers)
{
    return [answers](Connection& peer)
    {
        peer.AcceptBind();
        for (const Answer& answer : answers)
        {
            if (!peer.ReadRequest())
                return;
            if (!answer.odd.empty())
                peer.SendMessage(answer.odd);
            for (const auto& attributes : answer.entries)
                peer.SendMessage(Connection::Entry("dc=any", attributes));
            peer.SendMessage(Connection::Result(kSearchDone, answer.code));
        }
        peer.ReadRequest();
    };
}

TEST(LdapTest, TellsEachStepOnItsOwn)
{
    struct Case
    {
        Script script;
        Appends attempt;
    };
    const Answer kContexts = {{{{"NAMINGCONTEXTS", {"dc=one", "dc=last"}}}}};
    const Case kCases[] = {
        {Searched({kContexts, {{{}, {}, {}}}}), kBound + Found(kRoot, 1) + Found(kChildren, 3)},
        // No context is known: the root is searched again. A result without entries is one message.
        {Searched({{{{{"dc", {"x"}}}}}, {}}), kBound + Found(kRoot, 1) + Found(kRoot, 1)},
        {Searched({kContexts, {{}, 0, kValuesUnreadable}}),
         kBound + Found(kRoot, 1) +
             Appends{kChildren, L"succeeded (00000000)\r\n", L"(no list is given back)",
                     L"(the result is given back)", L"Got 1 objects back\r\n"}},
        {Searched({{{}, 0x33}, kContexts}),
         kBound +
             Appends{kRoot, L"failed (00000033)\r\n", L"LDAP:GetChildNodes failed with 51, Busy at []\r\n"} +
             Found(kRoot, 1)},
        {Searched({kContexts, {{}, 0x20}}),
         kBound + Found(kRoot, 1) +
             Appends{kChildren, L"failed (00000020)\r\n",
                     L"LDAP:GetChildNodes failed with 32, No Such Object at [dc=last]\r\n"}},
        {[](Connection& peer)
         {
             peer.ReadRequest();
             peer.SendMessage(Connection::Result(kBindResponse, 0x31, "no such user"));
             peer.ReadRequest();
         },
         kBinding + Appends{L"failed (00000031)\r\n", L"Invalid Credentials: no such user", L"\r\n"}},
    };
    for (const Case& test : kCases)
    {
        const LdapPeer peer(test.script);
        EXPECT_EQ(Tested(L"127.0.0.1", peer.Port(), eLDAPAuthSimplePlain),
                  Framed(L"127.0.0.1", test.attempt));
    }
    EXPECT_EQ(Tested(L"any", 65536, eLDAPAuthSimplePlain),
              Framed(L"any",
                     {L"ldap_init begin ... ", L"end\r\n",
                      L"LDAP: Failed to initialize LDAP session.  Err=89, Parameter Error: the port is not a "
                      L"number from 1 to 65535\r\n"}));
}

TEST(LdapTest, TakesTheUsualPortsForPort0)
{
    if (!EnterOwnNetwork())
        GTEST_SKIP() << "a network of its own needs root";
    const LdapPeer plain(Searched({{}, {}}), 389);
    EXPECT_EQ(Tested(L"127.0.0.1", 0, eLDAPAuthSimplePlain),
              Framed(L"127.0.0.1", kBound + Found(kRoot, 1) + Found(kRoot, 1)));
    const LdapPeer tls([](Connection& peer) { peer.Send("220 no TLS\r\n"); }, 636);
    EXPECT_EQ(
        Tested(L"127.0.0.1", 0, eLDAPAuthSimpleSSL),
        Framed(
            L"127.0.0.1",
            Appends{L"ldap_sslinit begin ... "} + Appends(kOpened.begin() + 1, kOpened.end()) +
                Appends{L"failed (00000051)\r\n",
                        L"LDAP: Failed to connect to LDAP server 127.0.0.1.  Err=81, Server Down: the server "
                        L"does not speak TLS on this port\r\n"}));
}

} // namespace
