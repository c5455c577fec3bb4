// SPDX-License-Identifier: MIT
// The LDAP test against a real directory. Runs through tests/support/with-directory, which names the servers.
#include "tests/ldap/LdapConsole.h"
#include "tests/support/ProgramFolder.h"
#include "text/Unicode.h"

#include <winldap.h>

#include <gmock/gmock.h>

#include <regex>

#define NEED_DIRECTORY()                                                                                     \
    if (!std::getenv("TAVO_LDAP_PORT"))                                                                      \
    GTEST_SKIP() << "no slapd on this machine"

const std::string kAlice = "cn=alice,dc=one,dc=example";

// What the directory says to what it does not take: NTLM in SPNEGO's place, for it has no key, and wrong
// passwords.
const std::string kNoSpnego = "SASL(-13): authentication failure: GSSAPI Failure: gss_accept_sec_context";
const std::string kNoRealm = "; Kerberos: no realm is known for this server";
const std::string kWrongNtlm = "SASL(-13): authentication failure: incorrect NTLMv2 response";
const std::string kWrongDigest =
    "SASL(-13): authentication failure: client response doesn't match what we generated (tried bogus)";
const std::string kBrokenTls = "the server closed the connection during the TLS handshake";
const std::string kClosed = "the server closed the connection";

// Wine's client knows no such method of binding, and gives no session for an address of IPv6.
const std::string kWineDigest = Refused(kDigest, 0x59);
const std::string kWineNoSession = NoSession(kSimplePlain, "0, Success");
// It never returns from a TLS handshake that the server breaks off.
const std::string kWineHangs = "hangs";

TEST(Directory, IsTestedAsTheDialogSays)
{
    NEED_DIRECTORY();
    const std::string plain = std::getenv("TAVO_LDAP_PORT");
    const std::string tls = std::getenv("TAVO_LDAPS_PORT");
    const std::string expired = std::getenv("TAVO_EXPIRED_PORT");
    const std::string foreign = std::getenv("TAVO_FOREIGN_PORT");
    const std::string other = std::getenv("TAVO_OTHER_NAME_PORT");
    const std::string demanding = std::getenv("TAVO_DEMANDING_PORT");
    const std::string walk = Walked("3");
    struct Case
    {
        LdapAnswers answers;
        std::string outcome;
        std::string wine{}; // where its client differs
    };
    const Case kCases[] = {
        {{plain, kAlice, "wonderland", kSimplePlain}, Bound(kSimplePlain) + walk},
        {{plain, kAlice, "wrong", kSimplePlain}, Refused(kSimplePlain, 0x31)},
        {{plain, "alice", "wonderland", kSimplePlain}, Refused(kSimplePlain, 0x22, "invalid DN")},
        {{plain, kAlice, "", kSimplePlain},
         Refused(kSimplePlain, 0x35, "unauthenticated bind (DN with no password) disallowed")},
        // Nobody and no password: an anonymous bind, which the server takes.
        {{plain, "", "", kSimplePlain}, Bound(kSimplePlain) + walk},
        {{plain, "cn=Jürgen 😀,dc=one,dc=example", "Pässwörd 😀", kSimplePlain, "127.0.0.1"},
         Bound(kSimplePlain) + walk},
        {{plain, kAlice, "wonderland", kSimplePlain, "::1"}, Bound(kSimplePlain) + walk, kWineNoSession},
        // The child search fails for this one; the bind counts all the same.
        {{plain, "cn=blind,dc=one,dc=example", "dark", kSimplePlain},
         Bound(kSimplePlain) + Found("base", "1") + NotFound("one_level", 0x20, "o=Größe 😀")},
        {{plain, "alice", "wonderland", kDigest}, Bound(kDigest) + walk, kWineDigest},
        {{plain, "Jürgen 😀", "Pässwörd 😀", kDigest}, Bound(kDigest) + walk, kWineDigest},
        {{plain, "", "", kDigest}, Refused(kDigest, 0x31, "no user name was given"), kWineDigest},
        {{plain, "alice", "wonderland", kDpa}, Refused(kDpa, 0x07), Refused(kDpa, 0x59)},
        {{plain, "alice", "wonderland", kNegotiate}, Refused(kNegotiate, 0x31, kNoSpnego + kNoRealm)},
        {{tls, kAlice, "wonderland", kSimpleSsl}, Bound(kSimpleSsl) + walk},
        {{expired, kAlice, "wonderland", kSimpleSsl}, NotConnected(kSimpleSsl, "certificate has expired")},
        {{foreign, kAlice, "wonderland", kSimpleSsl},
         NotConnected(kSimpleSsl, "unable to get local issuer certificate")},
        {{other, kAlice, "wonderland", kSimpleSsl}, NotConnected(kSimpleSsl, "hostname mismatch")},
        // The server's refusal comes after the handshake, beside the end of the connection.
        {{demanding, kAlice, "wonderland", kSimpleSsl},
         Refused(kSimpleSsl, 0x51, "TLS: tlsv13 alert certificate required"),
         kWineHangs},
        {{tls, kAlice, "wonderland", kSimplePlain}, Refused(kSimplePlain, 0x51, kClosed)},
        // All in turn, with a TLS handshake on the plain port in front.
        {{plain, "alice", "wonderland", kTryAll},
         NotConnected(kSimpleSsl, kBrokenTls) + Bound(kNtlm) + walk,
         kWineHangs},
        {{plain, "alice", "wrong", kTryAll},
         NotConnected(kSimpleSsl, kBrokenTls) + Refused(kNtlm, 0x31, kWrongNtlm) +
             Refused(kDigest, 0x31, kWrongDigest) + Refused(kDpa, 0x07) +
             Refused(kNegotiate, 0x31, kNoSpnego + kNoRealm) + Refused(kSimplePlain, 0x22, "invalid DN"),
         kWineHangs},
        {{tls, kAlice, "wonderland", kTryAll}, Bound(kSimpleSsl) + walk},
        {{tls, kAlice, "wrong", kTryAll, "127.0.0.1"},
         Refused(kSimpleSsl, 0x31) + Refused(kNtlm, 0x51, kClosed) + Refused(kDigest, 0x51, kClosed) +
             Refused(kDpa, 0x07) + Refused(kNegotiate, 0x51, kClosed) + Refused(kSimplePlain, 0x51, kClosed),
         Refused(kSimpleSsl, 0x31) + Refused(kNtlm, 0x59) + kWineDigest + Refused(kDpa, 0x59) +
             Refused(kNegotiate, 0x51) + Refused(kSimplePlain, 0x51)},
    };
    for (const auto& [answers, outcome, wine] : kCases)
    {
        if (RunsOnWindows() && wine == kWineHangs)
            continue;
        // Through the windows there where the bind succeeds at once.
        const bool calls = RunsOnWindows() && (answers.method.number != eLDAPAuthTryAll || !wine.empty());
        EXPECT_EQ(calls ? RunLdapCalls(answers) : RunLdapTest(answers),
                  Framed(answers, RunsOnWindows() && !wine.empty() ? wine : outcome))
            << answers.method.text << " as " << answers.user << " at " << answers.server << ":"
            << answers.port;
    }
}

// One sum on both systems: the client's own there, ours here.
TEST(Directory, HasItsErrorsNamedAsWindowsNamesThem)
{
    std::string names;
    for (ULONG code = 0; code <= 0x61; ++code)
    {
        const std::string name = text::ToUtf8(ldap_err2stringW(code));
        if (code != 0x4c && name != "Unknown Error") // which Wine's does not name
            names += name + "\n";
    }
    names = std::regex_replace(names, std::regex("\n+"), "\n");
    EXPECT_EQ(CRC64(names.data(), names.size()), 11884781215483758785U) << names;
}

// Handlers nest on one stack, and the console's end waits for them.
TEST(Directory, IsTestedToTheEndBesideAShipmentAndAClose)
{
    NEED_DIRECTORY();
    if (RunsOnWindows())
        GTEST_SKIP() << "the user of the Windows tests waits until the console stands still";
    const LdapAnswers answers = {std::getenv("TAVO_LDAP_PORT"), kAlice, "wonderland", kSimplePlain};
    // The shipment finds no server and says so.
    const std::string ship = "FTP Logs to Support";
    using Input = std::vector<std::string>;
    for (const auto& [before, after] : {std::pair<Input, Input>({}, {ship}), {{ship}, {}}, {{}, {"Close"}}})
    {
        ProgramStart start;
        for (const Input& lines : {before, Typed(answers), after})
            start.input.insert(start.input.end(), lines.begin(), lines.end());
        const ProgramFolder folder;
        const ProgramOutcome outcome = folder.Run(start);
        EXPECT_EQ(outcome.exitCode, 0);
        static const std::regex shipmentLine("\\[\\] FTP_LOG: [^\n]*\n");
        const std::string console = WithoutTimes(outcome.console, "[] ");
        EXPECT_THAT(std::regex_replace(console, shipmentLine, ""),
                    testing::HasSubstr(Framed(answers, Bound(kSimplePlain) + Walked("3"))));
        EXPECT_EQ(console.find("FTP_LOG: ### File size") != std::string::npos, after != Input{"Close"});
    }
}

TEST(Directory, IsTestedWithoutTheLibrarysSetUpAndWithABrokenOneOfKerberos)
{
    NEED_DIRECTORY();
    if (RunsOnWindows())
        GTEST_SKIP() << "the libraries are the Linux client's";
    // What the library would read for other programs, all of it wrong.
    const LdapAnswers digest = {std::getenv("TAVO_LDAP_PORT"), "alice", "wonderland", kDigest};
    EXPECT_EQ(RunLdapTest(digest, {{"LDAPBASE", "dc=nowhere"},
                                   {"LDAPURI", "ldap://nowhere.invalid"},
                                   {"LDAPSIZELIMIT", "1"},
                                   {"LDAPTIMELIMIT", "1"},
                                   {"LDAPDEREF", "always"},
                                   {"LDAPSASL_SECPROPS", "minssf=256"},
                                   {"LDAPSASL_REALM", "nowhere"},
                                   {"LDAPTLS_REQCERT", "never"}}),
              Framed(digest, Bound(kDigest) + Walked("3")));

    const TestFolder folder;
    folder.Write("krb5.conf", "[libdefaults\n");
    const LdapAnswers negotiate = {std::getenv("TAVO_LDAP_PORT"), "alice", "wonderland", kNegotiate};
    EXPECT_EQ(
        RunLdapTest(negotiate, {{"KRB5_CONFIG", (folder.Path() / "krb5.conf").string()}}),
        Framed(negotiate, Refused(kNegotiate, 0x31,
                                  kNoSpnego + "; Kerberos: Improper format of Kerberos configuration file")));
}
