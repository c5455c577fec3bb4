// SPDX-License-Identifier: MIT
// The LDAP test of the program that ships against a real directory: the console's text as a whole. Runs
// through tests/support/with-directory, which says where the servers are.
#include "tests/ldap/LdapConsole.h"
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>

namespace
{

// A port of the directory, by its name in the environment; skips the case when there is no directory.
#define NEED_DIRECTORY()                                                                                     \
    if (!std::getenv("TAVO_LDAP_PORT"))                                                                      \
    GTEST_SKIP() << "no slapd on this machine"

std::string Port(const char* name)
{
    const char* port = std::getenv(name);
    return port ? port : "";
}

const std::string kAlice = "cn=alice,dc=one,dc=example";

// The directory takes no NTLM inside SPNEGO and has no key for Kerberos.
const std::string kNoSpnego = "SASL(-13): authentication failure: GSSAPI Failure: gss_accept_sec_context";

// What Wine's client cannot do. It knows no such method of binding, and gives no session for a host that is
// empty or an address of IPv6.
const std::string kWineNtlm = Refused(kNtlm, 0x59, "");
const std::string kWineDigest = Refused(kDigest, 0x59, "");
const std::string kWineDpa = Refused(kDpa, 0x59, "");
const std::string kWineNegotiate = Refused(kNegotiate, 0x52, "");
const std::string kWineNoSession = NoSession(kSimplePlain);
// It never returns from a TLS handshake that the server breaks off.
const std::string kWineHangs = "hangs";

TEST(Directory, IsTestedWithOneMethod)
{
    NEED_DIRECTORY();
    const std::string plain = Port("TAVO_LDAP_PORT");
    const std::string tls = Port("TAVO_LDAPS_PORT");
    const std::string walk = Walked(3);
    struct Case
    {
        LdapAnswers answers;
        std::string outcome;
        std::string wine{}; // where its client differs
    };
    const Case kCases[] = {
        {{"localhost", plain, "", kAlice, "wonderland", kSimplePlain}, Bound(kSimplePlain) + walk},
        {{"localhost", plain, "", kAlice, "wrong", kSimplePlain}, Refused(kSimplePlain, 0x31, "")},
        {{"localhost", plain, "", "alice", "wonderland", kSimplePlain},
         Refused(kSimplePlain, 0x22, "invalid DN")},
        {{"localhost", plain, "", kAlice, "", kSimplePlain},
         Refused(kSimplePlain, 0x35, "unauthenticated bind (DN with no password) disallowed")},
        // Nobody and no password: an anonymous bind, which the server takes.
        {{"localhost", plain, "", "", "", kSimplePlain}, Bound(kSimplePlain) + walk},
        {{"127.0.0.1", plain, "", "cn=Jürgen 😀,dc=one,dc=example", "Pässwörd 😀", kSimplePlain},
         Bound(kSimplePlain) + walk},
        {{"::1", plain, "", kAlice, "wonderland", kSimplePlain}, Bound(kSimplePlain) + walk, kWineNoSession},
        // The child search fails for this one; the bind counts all the same.
        {{"localhost", plain, "", "cn=blind,dc=one,dc=example", "dark", kSimplePlain},
         Bound(kSimplePlain) + WalkRefused(0x20, "o=Größe 😀")},
        {{"localhost", plain, "", "alice", "wonderland", kDigest}, Bound(kDigest) + walk, kWineDigest},
        {{"localhost", plain, "", "Jürgen 😀", "Pässwörd 😀", kDigest}, Bound(kDigest) + walk, kWineDigest},
        {{"localhost", plain, "", "alice", "wrong", kDigest},
         Refused(kDigest, 0x31,
                 "SASL(-13): authentication failure: client response doesn't match what we generated (tried "
                 "bogus)"),
         kWineDigest},
        {{"localhost", plain, "", "", "", kDigest},
         Refused(kDigest, 0x31, "no user name was given"),
         kWineDigest},
        {{"localhost", plain, "", "alice", "wonderland", kNtlm}, Bound(kNtlm) + walk, kWineNtlm},
        {{"localhost", plain, "", "alice", "wonderland", kDpa}, Refused(kDpa, 0x07, ""), kWineDpa},
        {{"localhost", plain, "", "alice", "wonderland", kNegotiate},
         Refused(kNegotiate, 0x31, kNoSpnego),
         kWineNegotiate},
        {{"localhost", tls, "", kAlice, "wonderland", kSimpleSsl}, Bound(kSimpleSsl) + walk},
        {{"127.0.0.1", tls, "", kAlice, "wrong", kSimpleSsl}, Refused(kSimpleSsl, 0x31, "")},
        {{"localhost", Port("TAVO_EXPIRED_PORT"), "", kAlice, "wonderland", kSimpleSsl},
         NotConnected(kSimpleSsl, "certificate has expired")},
        {{"localhost", Port("TAVO_FOREIGN_PORT"), "", kAlice, "wonderland", kSimpleSsl},
         NotConnected(kSimpleSsl, "unable to get local issuer certificate")},
        {{"localhost", Port("TAVO_OTHER_NAME_PORT"), "", kAlice, "wonderland", kSimpleSsl},
         NotConnected(kSimpleSsl, "hostname mismatch")},
        // TLS where there is none, and none where there is.
        {{"localhost", plain, "", kAlice, "wonderland", kSimpleSsl},
         NotConnected(kSimpleSsl, "the server closed the connection during the TLS handshake"),
         kWineHangs},
        {{"localhost", tls, "", kAlice, "wonderland", kSimplePlain},
         Refused(kSimplePlain, 0x51, "the server closed the connection")},
        {{"localhost", Port("TAVO_UNUSED_PORT"), "", kAlice, "wonderland", kSimplePlain},
         NotConnected(kSimplePlain, "connection refused")},
        {{"no-such-host.invalid", plain, "", kAlice, "wonderland", kSimplePlain},
         NotConnected(kSimplePlain, "name or service not known")},
        {{"", plain, "", kAlice, "wonderland", kSimplePlain},
         NotConnected(kSimplePlain, "no server name was given"),
         kWineNoSession},
    };
    for (const Case& test : kCases)
    {
        const LdapAnswers& answers = test.answers;
        if (RunsOnWindows() && test.wine == kWineHangs)
            continue;
        const bool differs = RunsOnWindows() && !test.wine.empty();
        EXPECT_EQ(RunsOnWindows() ? RunLdapCalls(answers) : RunLdapTest(answers),
                  Framed(answers, differs ? test.wine : test.outcome))
            << answers.method << " as " << answers.user << " at " << answers.server << ":" << answers.port;
    }
}

TEST(Directory, IsTestedWithAllMethodsUntilOneBinds)
{
    NEED_DIRECTORY();
    if (RunsOnWindows())
    {
        const LdapAnswers answers = {"localhost", Port("TAVO_LDAPS_PORT"), "", kAlice, "wonderland", kTryAll};
        EXPECT_EQ(RunLdapTest(answers), Framed(answers, Bound(kSimpleSsl) + Walked(3)));
        return;
    }
    const LdapAnswers answers = {"localhost", Port("TAVO_LDAP_PORT"), "", "alice", "wonderland", kTryAll};
    EXPECT_EQ(RunLdapTest(answers),
              Framed(answers,
                     NotConnected(kSimpleSsl, "the server closed the connection during the TLS handshake") +
                         Bound(kNtlm) + Walked(3)));
}

TEST(Directory, IsTestedWithAllMethodsThoughNoneBinds)
{
    NEED_DIRECTORY();
    if (RunsOnWindows())
    {
        const LdapAnswers answers = {"localhost", Port("TAVO_LDAPS_PORT"), "", kAlice, "wrong", kTryAll};
        EXPECT_EQ(RunLdapCalls(answers),
                  Framed(answers, Refused(kSimpleSsl, 0x31, "") + kWineNtlm + kWineDigest + kWineDpa +
                                      Refused(kNegotiate, 0x51, "") + Refused(kSimplePlain, 0x51, "")));
        return;
    }
    const LdapAnswers answers = {"localhost", Port("TAVO_LDAP_PORT"), "", "alice", "wrong", kTryAll};
    EXPECT_EQ(
        RunLdapTest(answers),
        Framed(answers,
               NotConnected(kSimpleSsl, "the server closed the connection during the TLS handshake") +
                   Refused(kNtlm, 0x31, "SASL(-13): authentication failure: incorrect NTLMv2 response") +
                   Refused(kDigest, 0x31,
                           "SASL(-13): authentication failure: client response doesn't match what we "
                           "generated (tried bogus)") +
                   Refused(kDpa, 0x07, "") + Refused(kNegotiate, 0x31, kNoSpnego) +
                   Refused(kSimplePlain, 0x22, "invalid DN")));
}

TEST(Directory, IsNotTestedWhenTheDialogIsCancelled)
{
    EXPECT_EQ(RunLdapTest({"localhost", "389", "", "", "", kTryAll, "Cancel"}), "");
}

// Handlers nest on one stack, and the console's end waits for them.
TEST(Directory, IsTestedToTheEndBesideAShipmentAndAClose)
{
    NEED_DIRECTORY();
    if (RunsOnWindows())
        GTEST_SKIP() << "the user of the Windows tests waits until the console stands still";
    const LdapAnswers answers = {"localhost", Port("TAVO_LDAP_PORT"), "", kAlice, "wonderland", kSimplePlain};
    struct Case
    {
        const char* before;
        const char* after;
    };
    // The shipment finds no server and says so.
    const std::string ship = "FTP Logs to Support";
    for (const auto& [before, after] : {Case{"", ship.c_str()}, Case{ship.c_str(), ""}, Case{"", "Close"}})
    {
        ProgramStart start;
        start.input = Typed(answers);
        if (*before)
            start.input.insert(start.input.begin(), before);
        if (*after)
            start.input.push_back(after);
        const ProgramFolder folder;
        const ProgramOutcome outcome = folder.Run(start);
        EXPECT_TRUE(outcome.ended);
        EXPECT_EQ(outcome.exitCode, 0);
        static const std::regex shipmentLine("FTP_LOG: [^\n]*\n");
        const std::string console = WithoutTimes(outcome.console);
        EXPECT_THAT(std::regex_replace(console, shipmentLine, ""),
                    testing::HasSubstr(Framed(answers, Bound(kSimplePlain) + Walked(3))))
            << before << ", " << after;
        EXPECT_EQ(console.find("FTP_LOG: ### File size") != std::string::npos,
                  before == ship || after == ship);
    }
}

// What the library would read for other programs, all of it wrong.
TEST(Directory, IsTestedWithoutTheLibrarysSetUp)
{
    NEED_DIRECTORY();
    if (RunsOnWindows())
        GTEST_SKIP() << "the library is the Linux client's";
    const LdapAnswers answers = {"localhost", Port("TAVO_LDAP_PORT"), "", "alice", "wonderland", kDigest};
    EXPECT_EQ(RunLdapTest(answers, {{"LDAPBASE", "dc=nowhere"},
                                    {"LDAPURI", "ldap://nowhere.invalid"},
                                    {"LDAPSIZELIMIT", "1"},
                                    {"LDAPTIMELIMIT", "1"},
                                    {"LDAPDEREF", "always"},
                                    {"LDAPSASL_SECPROPS", "minssf=256"},
                                    {"LDAPSASL_REALM", "nowhere"},
                                    {"LDAPTLS_REQCERT", "never"}}),
              Framed(answers, Bound(kDigest) + Walked(3)));
}

} // namespace
