// SPDX-License-Identifier: MIT
// The test of a server against a peer that plays a script, and what is given back to the client's library.
#include "tests/ldap/LdapConsole.h"
#include "tests/support/LdapPeer.h"
#include "text/Unicode.h"

#include <rpcdce.h>
#include <winldap.h>

#include <gmock/gmock.h>

#include <regex>

#include <dlfcn.h>

const std::string kNoList = "(no list is given back)";
const std::string kResult = "(the result is given back)";

template <class Call>
static Call Next(Call, const char* name)
{
    return reinterpret_cast<Call>(dlsym(RTLD_NEXT, name));
}

// In the place of the client's own, to which they lead.
ULONG ldap_value_freeW(PWCHAR* values)
{
    gAppended += values == nullptr ? kNoList : "";
    return Next(ldap_value_freeW, "ldap_value_freeW")(values);
}

ULONG ldap_msgfree(LDAPMessage* result)
{
    gAppended += kResult;
    return Next(ldap_msgfree, "wldap32_ldap_msgfree")(result);
}

// What is handed to the client is noted in the text of a test that asks for it.
struct Handed
{
    bool isNoted = false;
    ULONG version = 3; // that the client tells
    int refused = 0;   // an option
};
static Handed gHanded;

static void Note(const std::string& note)
{
    if (gHanded.isNoted)
        gAppended += "(" + note + ")";
}

ULONG ldap_connect(LDAP* session, LDAP_TIMEVAL* timeout)
{
    Note(std::to_string(timeout->tv_sec) + " s " + std::to_string(timeout->tv_usec) + " us");
    return Next(ldap_connect, "wldap32_ldap_connect")(session, timeout);
}

ULONG ldap_set_optionW(LDAP* session, int option, const void* value)
{
    const bool isAddress = option == LDAP_OPT_TIMELIMIT || option == LDAP_OPT_PROTOCOL_VERSION;
    const auto number =
        isAddress ? *static_cast<const ULONG*>(value) : reinterpret_cast<std::uintptr_t>(value);
    Note(std::to_string(option) + " is " + std::to_string(number));
    return option == gHanded.refused ? 0x5c
                                     : Next(ldap_set_optionW, "ldap_set_optionW")(session, option, value);
}

ULONG ldap_get_optionW(LDAP*, int, void* value)
{
    *static_cast<ULONG*>(value) = gHanded.version;
    return 0;
}

ULONG ldap_bind_sW(LDAP* session, PWCHAR name, PWCHAR credentials, ULONG method)
{
    const auto& identity = *reinterpret_cast<const SEC_WINNT_AUTH_IDENTITY_W*>(credentials);
    std::string note = name == nullptr ? "nobody" : "a name";
    for (const auto& [units, length] : {std::pair(identity.User, identity.UserLength),
                                        {identity.Domain, identity.DomainLength},
                                        {identity.Password, identity.PasswordLength}})
        note += " " + text::ToUtf8(text::FromUtf16({reinterpret_cast<const char16_t*>(units), length}));
    Note(note + " " + std::to_string(identity.Flags) + " by " + std::to_string(method));
    return Next(ldap_bind_sW, "ldap_bind_sW")(session, name, credentials, method);
}

constexpr unsigned char kSearchDone = 0x65;
constexpr unsigned char kSearchReference = 0x73;

// Answers a bind and then each search with what it finds and the code that ends it.
struct Answer
{
    std::vector<std::vector<Connection::Attribute>> entries;
    unsigned char code = 0;
    std::string odd{}; // an operation among them
    std::string text{};
    std::size_t before = 0; // which of them it comes
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
            const bool isRoot = peer.Request().find(std::string("\x04\0\x0a\x01\0", 5)) != std::string::npos;
            EXPECT_THAT(
                peer.Request(),
                testing::EndsWith(std::string("\x01\x01\0", 3) + BerElementOf(0x87, "objectClass") +
                                  BerElementOf(0x30, BerText(isRoot ? "namingContexts" : "objectClass") +
                                                         BerText("distinguishedName"))));
            for (std::size_t at = 0; at <= answer.entries.size(); ++at)
            {
                if (at == answer.before && !answer.odd.empty())
                    peer.SendMessage(answer.odd);
                if (at < answer.entries.size())
                    peer.SendMessage(Connection::Entry("dc=any", answer.entries[at]));
            }
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
    const std::string kElsewhere = BerElementOf(kSearchReference, BerText("ldap://127.0.0.1:1/dc=elsewhere"));
    const std::pair<std::vector<Answer>, std::string> kCases[] = {
        {{kContexts, {{{}, {}, {}}}}, Walked("3")},
        // No context is known: the root is searched again. A result without entries is one message.
        {{{{{{"dc", {"x"}}}}}, {}}, one + one},
        {{kContexts, {{}, 0, odd}},
         one + std::regex_replace(Found("one_level", "1"), std::regex(R"(\[\] Got)"), kNoList + "$&")},
        {{{{}, 0x33, {}, "try later"}, kContexts}, NotFound("base", 0x33, "", "try later") + one},
        {{kContexts, {{}, 0x20}}, one + NotFound("one_level", 0x20, "dc=last")},
        // What was found before a fault counts for nothing.
        {{{{{{"namingContexts", {"dc=lost"}}}}, 0x33}, {}}, NotFound("base", 0x33, "") + one},
        {{kContexts, {{{}, {}}, 0x04}}, one + NotFound("one_level", 0x04, "dc=last")},
        // The first message counts whatever it is, and of the others only entries do.
        {{kContexts, {{{}, {}}, 0, kElsewhere, {}, 0}}, Walked("3")},
        {{kContexts, {{{}, {}}, 0, kElsewhere, {}, 1}}, Walked("2")},
        {{kContexts, {{}, 0, kElsewhere}}, Walked("1")},
        {{{{{{"namingContexts", {"dc=a", "dc=b"}}}, {{"namingContexts", {"dc=c", "dc=d"}}}}}, {{}, 0x20}},
         Found("base", "2") + NotFound("one_level", 0x20, "dc=d")},
        // A context that would imitate a line of the console, and turn it around.
        {{{{{{"namingContexts", {"dc=a]\r\nEND TEST\r\n\u202E["}}}}}, {{}, 0x20}},
         one + NotFound("one_level", 0x20, "dc=a]  END TEST   [")},
    };
    for (const auto& [answers, walk] : kCases)
        ExpectTold(LdapPeer(Searched(answers)).Port(), kSimplePlain, Bound(kSimplePlain) + walk);
    const LdapPeer refusing(Answering(Connection::Result(0x61, 0x31, "not today")));
    ExpectTold(refusing.Port(), kSimplePlain, Refused(kSimplePlain, 0x31, "not today"));
    std::string none;
    for (const TypedMethod& method : {kSimpleSsl, kNtlm, kDigest, kDpa, kNegotiate, kSimplePlain})
        none += NoSession(method, "89, Parameter Error: the port is not a number from 1 to 65535");
    ExpectTold(65536, kTryAll, none);
}

// An option that the client refuses, and another version than 3, end nothing.
TEST(LdapTest, HandsTheClientWhatItsStepsTell)
{
    const std::tuple<Handed, const char*, const char*> kCases[] = {
        {{true}, "succeeded (00000000)", "(17 is 3)[] Set protocol ver=3 - succeeded (00000000)\n"},
        {{true, 2, LDAP_OPT_TCP_KEEPALIVE}, "failed (0000005C)", ""},
    };
    for (const auto& [handed, keepAlive, version] : kCases)
    {
        const LdapPeer peer(Answering(Connection::Result(0x61, 0x31)));
        const LdapAnswers answers = {std::to_string(peer.Port()), "ü😀", "", kDigest, "127.0.0.1", "Größe"};
        gHanded = handed;
        EXPECT_EQ(
            RunLdapCalls(answers),
            Framed(answers, "[] \n[] ldap_init begin ... [] end\n(64 is 1)[] Set TCP keep alive - " +
                                std::string(keepAlive) +
                                "\n(8 is 0)[] Set no follow referrals - succeeded (00000000)\n"
                                "[] ldap_connect(<server>) begin ...(15 s 0 us)[] succeeded (00000000)\n" +
                                version +
                                "(4 is 15)[] Set timeout (15 sec) - succeeded (00000000)\n"
                                "[] ldap_bind_s(Digest) begin ...(nobody ü😀 Größe  2 by 16518)"
                                "[] failed (00000031)\n[] Invalid Credentials[] \n"));
        gHanded = {};
    }
}
