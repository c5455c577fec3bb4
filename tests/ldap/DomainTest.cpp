// SPDX-License-Identifier: MIT
// The LDAP test of the program that ships against a domain controller of the Windows kind. Runs through
// tests/support/with-domain, on the controller itself.
#include "tests/ldap/LdapConsole.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>
#include <vector>

namespace
{

const std::string kController = "dc1.tavo.example";
const std::string kWrongNtlm =
    "8009030C: LdapErr: DSID-0C0904DC, comment: AcceptSecurityContext error, data 52e, v1db1";
const std::string kWrongSimple =
    "80090308: LdapErr: DSID-0C0903A9, comment: AcceptSecurityContext error, data 52e, v1db1";
const std::string kNeedsTls = "BindSimple: Transport encryption required.";

std::string ControllerLog()
{
    std::ifstream file(std::getenv("TAVO_DOMAIN_LOG"));
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

// How the controller says the last log-on over LDAP was made: "krb5", "NTLMSSP" or "simple bind".
std::string LastLogOn()
{
    const std::string log = ControllerLog();
    static const std::regex logOn(R"(Successful AuthZ: \[LDAP,([^\]]*)\])");
    std::string last;
    for (std::sregex_iterator at(log.begin(), log.end(), logOn), end; at != end; ++at)
        last = (*at)[1];
    return last;
}

// How often the controller has been given a wrong password; enough of them lock a user out.
std::ptrdiff_t WrongPasswords()
{
    const std::string log = ControllerLog();
    static const std::regex wrong(R"(status \[NT_STATUS_WRONG_PASSWORD\])");
    return std::distance(std::sregex_iterator(log.begin(), log.end(), wrong), std::sregex_iterator());
}

// The lines of ldapsearch's answer that begin with `start`, less that; asked as alice over TLS.
std::vector<std::string> Asked(const std::string& search, const std::string& start)
{
    const std::string command =
        "LDAPTLS_CACERT=$SSL_CERT_FILE ldapsearch -LLL -o ldif-wrap=no -x -H ldaps://" + kController +
        " -D alice@tavo.example -w 'Wond3rland!' " + search;
    std::FILE* const pipe = popen(command.c_str(), "r");
    std::string text;
    char buffer[4096];
    while (const std::size_t count = std::fread(buffer, 1, sizeof(buffer), pipe))
        text.append(buffer, count);
    EXPECT_EQ(pclose(pipe), 0) << search;
    std::vector<std::string> found;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
    {
        if (line.starts_with(start))
            found.push_back(line.substr(start.size()));
    }
    return found;
}

// Which naming context a controller lists last differs from one to the next.
std::string WalkedAll()
{
    static const std::string walked = []
    {
        const std::vector<std::string> contexts = Asked("-b '' -s base namingContexts", "namingContexts: ");
        const std::string last = contexts.empty() ? "" : contexts.back();
        return Walked(static_cast<int>(Asked("-b '" + last + "' -s one 1.1", "dn").size()));
    }();
    return walked;
}

TEST(Domain, IsTestedWithOneMethod)
{
    const std::string password = "Wond3rland!";
    const std::string walk = WalkedAll();
    struct Case
    {
        LdapAnswers answers;
        std::string outcome;
        std::string logOn; // where one is made
    };
    const Case kCases[] = {
        {{kController, "389", "TAVO", "alice", password, kNegotiate}, Bound(kNegotiate) + walk, "krb5"},
        {{kController, "0", "tavo.example", "alice", password, kNegotiate}, Bound(kNegotiate) + walk, "krb5"},
        {{kController, "389", "", "alice@tavo.example", password, kNegotiate},
         Bound(kNegotiate) + walk,
         "krb5"},
        // No ticket for an address, so NTLM.
        {{"10.53.0.1", "389", "TAVO", "alice", password, kNegotiate}, Bound(kNegotiate) + walk, "NTLMSSP"},
        {{kController, "389", "TAVO", "jürgen", "Pässw0rd😀!", kNegotiate}, Bound(kNegotiate) + walk, "krb5"},
        // This controller makes no ticket for a name beyond 16 bits ("PAC signing failed").
        {{kController, "389", "TAVO", "jürgen😀", "Pässw0rd😀!", kNegotiate},
         Bound(kNegotiate) + walk,
         "NTLMSSP"},
        {{kController, "389", "TAVO", "alice", "wrong", kNegotiate},
         Refused(kNegotiate, 0x31, "Kerberos: Preauthentication failed"),
         ""},
        {{kController, "389", "TAVO", "", "", kNegotiate},
         Refused(kNegotiate, 0x31, "no user name was given"),
         ""},
        {{kController, "389", "TAVO", "alice", password, kNtlm}, Bound(kNtlm) + walk, "NTLMSSP"},
        {{kController, "389", "", "alice@tavo.example", password, kNtlm}, Bound(kNtlm) + walk, "NTLMSSP"},
        {{kController, "389", "TAVO", "jürgen😀", "Pässw0rd😀!", kNtlm}, Bound(kNtlm) + walk, "NTLMSSP"},
        {{kController, "389", "TAVO", "alice", "wrong", kNtlm}, Refused(kNtlm, 0x31, kWrongNtlm), ""},
        {{kController, "636", "", "alice@tavo.example", password, kSimpleSsl},
         Bound(kSimpleSsl) + walk,
         "simple bind"},
        {{kController, "0", "", "jürgen😀@tavo.example", "Pässw0rd😀!", kSimpleSsl},
         Bound(kSimpleSsl) + walk,
         "simple bind"},
        {{kController, "636", "", "alice@tavo.example", "wrong", kSimpleSsl},
         Refused(kSimpleSsl, 0x31, kWrongSimple),
         ""},
        {{"Büro.tavo.example", "636", "", "alice@tavo.example", password, kSimpleSsl},
         Bound(kSimpleSsl) + walk,
         "simple bind"},
        {{"dc1", "636", "", "alice@tavo.example", password, kSimpleSsl},
         NotConnected(kSimpleSsl, "hostname mismatch"),
         ""},
        {{kController, "389", "", "alice@tavo.example", password, kSimplePlain},
         Refused(kSimplePlain, 0x08, kNeedsTls),
         ""},
        {{kController, "389", "TAVO", "alice", password, kDpa}, Refused(kDpa, 0x07, ""), ""},
    };
    for (const Case& test : kCases)
    {
        const LdapAnswers& answers = test.answers;
        SCOPED_TRACE(answers.method + " as " + answers.user + " at " + answers.server + ":" + answers.port);
        const std::ptrdiff_t wrongBefore = WrongPasswords();
        EXPECT_EQ(RunLdapTest(answers), Framed(answers, test.outcome));
        EXPECT_EQ(WrongPasswords() - wrongBefore, answers.password == "wrong" ? 1 : 0);
        if (!test.logOn.empty())
        {
            EXPECT_EQ(LastLogOn(), test.logOn);
        }
    }
}

TEST(Domain, IsTestedWithAllMethodsUntilNtlmBinds)
{
    const LdapAnswers answers = {kController, "0", "TAVO", "alice", "Wond3rland!", kTryAll};
    // The controller wants the user's full name for a simple bind.
    EXPECT_EQ(RunLdapTest(answers),
              Framed(answers, Refused(kSimpleSsl, 0x31, kWrongSimple) + Bound(kNtlm) + WalkedAll()));
}

TEST(Domain, IsTestedWithAllMethodsThoughNoneBinds)
{
    const LdapAnswers answers = {kController, "0", "TAVO", "alice", "wrong", kTryAll};
    EXPECT_EQ(RunLdapTest(answers),
              Framed(answers,
                     Refused(kSimpleSsl, 0x31, kWrongSimple) + Refused(kNtlm, 0x31, kWrongNtlm) +
                         Refused(kDigest, 0x01,
                                 "SASL: Failed to start authentication system: NT_STATUS_INVALID_PARAMETER") +
                         Refused(kDpa, 0x07, "") +
                         Refused(kNegotiate, 0x31, "Kerberos: Preauthentication failed") +
                         Refused(kSimplePlain, 0x08, kNeedsTls)));
}

} // namespace
