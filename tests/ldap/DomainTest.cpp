// SPDX-License-Identifier: MIT
// The LDAP test on a domain controller of the Windows kind itself. Runs through tests/support/with-domain.
#include "tests/ldap/LdapConsole.h"
#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>

#include <regex>

const std::string kController = "dc1.tavo.example";
const std::string kDirectory = "directory.tavo.example";
const std::string kWrongNtlm =
    "8009030C: LdapErr: DSID-0C0904DC, comment: AcceptSecurityContext error, data 52e, v1db1";
const std::string kWrongSimple =
    "80090308: LdapErr: DSID-0C0903A9, comment: AcceptSecurityContext error, data 52e, v1db1";

// How the controller says the last log-on over LDAP was made: "krb5", "NTLMSSP" or "simple bind".
static std::string LastLogOn()
{
    const std::string log = ReadFile(std::getenv("TAVO_DOMAIN_LOG"));
    static const std::regex logOn(R"(Successful AuthZ: \[LDAP,([^\]]*)\])");
    std::string last;
    for (std::sregex_iterator at(log.begin(), log.end(), logOn), end; at != end; ++at)
        last = (*at)[1];
    return last;
}

// How often the controller has been given a wrong password; enough of them lock a user out.
static std::ptrdiff_t WrongPasswords()
{
    const std::string log = ReadFile(std::getenv("TAVO_DOMAIN_LOG"));
    static const std::regex wrong(R"(status \[NT_STATUS_WRONG_PASSWORD\])");
    return std::distance(std::sregex_iterator(log.begin(), log.end(), wrong), std::sregex_iterator());
}

// The test's text. How many objects the last context has differs from one controller to the next.
static std::string Tested(const LdapAnswers& answers, bool hasDefaultRealm)
{
    static const std::regex many("Got ([2-9]|[1-9][0-9]+) objects");
    const char* const file = hasDefaultRealm ? std::getenv("TAVO_KRB5_CONFIG") : "/dev/null";
    return std::regex_replace(RunLdapTest(answers, {{"KRB5_CONFIG", file}}), many, "Got many objects");
}

TEST(Domain, IsTestedAsTheDialogSays)
{
    const std::string right = "Wond3rland!";
    const std::string beyondAscii = "Pässw0rd😀!";
    const std::string full = "alice@tavo.example";
    const std::string walk = Walked("many");
    const std::string allRefused =
        Refused(kSimpleSsl, 0x31, kWrongSimple) + Refused(kNtlm, 0x31, kWrongNtlm) +
        Refused(kDigest, 0x01, "SASL: Failed to start authentication system: NT_STATUS_INVALID_PARAMETER") +
        Refused(kDpa, 0x07) + Refused(kNegotiate, 0x31, "Kerberos: Preauthentication failed") +
        Refused(kSimplePlain, 0x08, "BindSimple: Transport encryption required.");
    const auto as = [](const std::string& port, const std::string& domain, const std::string& user,
                       const std::string& password, const TypedMethod& method,
                       const std::string& server = kController)
    { return LdapAnswers{port, user, password, method, server, domain}; };
    struct Case
    {
        LdapAnswers answers;
        std::string outcome;
        std::string logOn{}; // where one is made
        std::ptrdiff_t wrongPasswords = 0;
        bool hasDefaultRealm = false;
    };
    const Case kCases[] = {
        {as("389", "TAVO", "alice", right, kNegotiate), Bound(kNegotiate) + walk, "krb5"},
        {as("0", "tavo.example", "alice", right, kNegotiate), Bound(kNegotiate) + walk, "krb5"},
        {as("389", "", full, right, kNegotiate), Bound(kNegotiate) + walk, "krb5"},
        // The dot that ends a whole name of DNS is not part of the server's.
        {as("389", "TAVO", "alice", right, kNegotiate, kController + "."), Bound(kNegotiate) + walk, "krb5"},
        {as("636", "", full, right, kSimpleSsl, kController + "."), Bound(kSimpleSsl) + walk, "simple bind"},
        // No ticket for an address, so NTLM.
        {as("389", "TAVO", "alice", right, kNegotiate, "10.53.0.1"), Bound(kNegotiate) + walk, "NTLMSSP"},
        {as("389", "TAVO", "jürgen", beyondAscii, kNegotiate), Bound(kNegotiate) + walk, "krb5"},
        // Not every controller makes a ticket for a name beyond 16 bits.
        {as("389", "TAVO", "jürgen😀", beyondAscii, kNegotiate), Bound(kNegotiate) + walk,
         std::getenv("TAVO_WIDE_NAME_LOG_ON")},
        {as("389", "TAVO", "", "", kNegotiate), Refused(kNegotiate, 0x31, "no user name was given")},
        {as("389", "TAVO", "alice", right, kNtlm), Bound(kNtlm) + walk, "NTLMSSP"},
        {as("389", "", full, right, kNtlm), Bound(kNtlm) + walk, "NTLMSSP"},
        {as("389", "TAVO", "jürgen😀", beyondAscii, kNtlm), Bound(kNtlm) + walk, "NTLMSSP"},
        {as("636", "", full, right, kSimpleSsl), Bound(kSimpleSsl) + walk, "simple bind"},
        {as("0", "", "jürgen😀@tavo.example", beyondAscii, kSimpleSsl), Bound(kSimpleSsl) + walk,
         "simple bind"},
        {as("636", "", full, right, kSimpleSsl, "Büro.tavo.example"), Bound(kSimpleSsl) + walk,
         "simple bind"},
        {as("636", "", full, right, kSimpleSsl, "dc1"), NotConnected(kSimpleSsl, "hostname mismatch")},
        // The controller wants the user's full name for a simple bind.
        {as("0", "TAVO", "alice", right, kTryAll),
         Refused(kSimpleSsl, 0x31, kWrongSimple) + Bound(kNtlm) + walk, "NTLMSSP"},
        {as("0", "TAVO", full, "wrong", kTryAll), allRefused, "", 3},
        // Each method asks once, whatever Kerberos might ask by itself; a simple bind needs a whole name.
        {as("0", "", "alice", "wrong", kTryAll), allRefused, "", 2, true},
        {as("389", "TAVO", "alice", "", kNegotiate), Refused(kNegotiate, 0x31, "no password was given")},
        // A name that does not say which realm it belongs to.
        {as("389", "", "carol@corp.example", right, kNegotiate), Bound(kNegotiate) + walk, "krb5"},
        // A server that names no realm: the machine's set-up does.
        {as("3389", "", "alice", right, kNegotiate, kDirectory), Bound(kNegotiate) + walk, "", 0, true},
        {as("3389", "", "alice", "wrong", kNegotiate, kDirectory),
         Refused(kNegotiate, 0x31, "Kerberos: Preauthentication failed"), "", 1, true},
    };
    for (const auto& [answers, outcome, logOn, wrongPasswords, hasDefaultRealm] : kCases)
    {
        SCOPED_TRACE(answers.method.text + (" as " + answers.user) + " at " + answers.server + ":" +
                     answers.port);
        const std::ptrdiff_t before = WrongPasswords();
        EXPECT_EQ(Tested(answers, hasDefaultRealm), Framed(answers, outcome));
        EXPECT_EQ(WrongPasswords() - before, wrongPasswords);
        if (!logOn.empty())
            EXPECT_EQ(LastLogOn(), logOn);
    }
}
