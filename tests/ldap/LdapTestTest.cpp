// SPDX-License-Identifier: MIT
// The test of a server against a peer that plays a script, and what is given back to the client's library.
#include "tests/ldap/LdapConsole.h"
#include "tests/support/LdapPeer.h"
#include "tests/support/OwnNetwork.h"

#include <winldap.h>

#include <gmock/gmock.h>

#include <dlfcn.h>

#include <regex>

using Connection = LdapPeer::Connection;
using Script = std::function<void(Connection&)>;

const std::string kNoList = "(no list is given back)";
const std::string kResult = "(the result is given back)";

template <class Argument>
static ULONG GiveBack(const char* name, Argument argument, const std::string& note)
{
    gAppended += note;
    return reinterpret_cast<ULONG (*)(Argument)>(dlsym(RTLD_NEXT, name))(argument);
}

// In the place of the client's own, to which they lead.
ULONG ldap_value_freeW(PWCHAR* values)
{
    return GiveBack("ldap_value_freeW", values, values == nullptr ? kNoList : "");
}

ULONG ldap_msgfree(LDAPMessage* result)
{
    return GiveBack("wldap32_ldap_msgfree", result, kResult);
}

constexpr unsigned char kSearchDone = 0x65;

// Answers a bind and then each search with what it finds and the code that ends it.
struct Answer
{
    std::vector<std::vector<Connection::Attribute>> entries;
    unsigned char code = 0;
    std::string odd{}; // an operation before them
    std::string text{};
};

static Script Searched(const std::vector<Answer>& answers)
{
    return [answers](Connection& peer)
    {
        peer.AcceptBind();
        for (const Answer& answer : answers)
        {
            if (!peer.ReadRequest())
                return;
            EXPECT_THAT(peer.Request(), testing::EndsWith(BerText("distinguishedName")));
            if (!answer.odd.empty())
                peer.SendMessage(answer.odd);
            for (const auto& attributes : answer.entries)
                peer.SendMessage(Connection::Entry("dc=any", attributes));
            peer.SendMessage(Connection::Result(kSearchDone, answer.code, answer.text));
        }
        peer.ReadRequest();
    };
}

// A result is given back before its line, which serves messages: there another test may begin, and fail.
static void ExpectTold(unsigned port, const TypedMethod& method, const std::string& attempt)
{
    const LdapAnswers answers = {std::to_string(port), "cn=user", "password", method, "127.0.0.1", "EXAMPLE"};
    const auto failElsewhere = [] { EXPECT_EQ(ldap_initW(const_cast<PWCHAR>(L"ldap://any"), 389), nullptr); };
    EXPECT_EQ(RunLdapCalls(answers, failElsewhere),
              Framed(answers, std::regex_replace(attempt, std::regex(R"(\[\] Got)"), kResult + "[] Got")));
}

TEST(LdapTest, TellsEachStepOnItsOwn)
{
    const Answer kContexts = {{{{"NAMINGCONTEXTS", {"dc=one", "dc=last"}}}}};
    // An entry whose one attribute has a name and nothing else.
    const std::string odd =
        BerElementOf(0x64, BerText("dc=odd") + BerElementOf(0x30, BerElementOf(0x30, BerText("dc"))));
    const std::string one = Found("base", "1");
    const std::pair<std::vector<Answer>, std::string> kCases[] = {
        {{kContexts, {{{}, {}, {}}}}, Walked("3")},
        // No context is known: the root is searched again. A result without entries is one message.
        {{{{{{"dc", {"x"}}}}}, {}}, one + one},
        {{kContexts, {{}, 0, odd}},
         one + std::regex_replace(Found("one_level", "1"), std::regex(R"(\[\] Got)"), kNoList + "$&")},
        {{{{}, 0x33, {}, "try later"}, kContexts}, NotFound("base", 0x33, "", "try later") + one},
        {{kContexts, {{}, 0x20}}, one + NotFound("one_level", 0x20, "dc=last")},
    };
    for (const auto& [answers, walk] : kCases)
        ExpectTold(LdapPeer(Searched(answers)).Port(), kSimplePlain, Bound(kSimplePlain) + walk);
    const LdapPeer refusing(
        [](Connection& peer)
        {
            peer.ReadRequest();
            peer.SendMessage(Connection::Result(0x61, 0x31, "not today"));
            peer.ReadRequest();
        });
    ExpectTold(refusing.Port(), kSimplePlain, Refused(kSimplePlain, 0x31, "not today"));
    std::string none;
    for (const TypedMethod& method : {kSimpleSsl, kNtlm, kDigest, kDpa, kNegotiate, kSimplePlain})
        none += NoSession(method, "89, Parameter Error: the port is not a number from 1 to 65535");
    ExpectTold(65536, kTryAll, none);
}

TEST(LdapTest, TakesTheUsualPortsForPort0)
{
    if (!EnterOwnNetwork())
        GTEST_SKIP() << "a network of its own needs root";
    const LdapPeer plain(Searched({{}, {}}), 389);
    ExpectTold(0, kSimplePlain, Bound(kSimplePlain) + Found("base", "1") + Found("base", "1"));
    const LdapPeer tls([](Connection& peer) { peer.Send("220 no TLS\r\n"); }, 636);
    ExpectTold(0, kSimpleSsl, NotConnected(kSimpleSsl, "the server does not speak TLS on this port"));
}
