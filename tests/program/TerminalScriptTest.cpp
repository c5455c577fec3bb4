// SPDX-License-Identifier: MIT
// The program as a script drives it: the whole text. The sums are the checks of xz files over the same bytes.
#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

TEST(TerminalScript, ReadsTheSameTextAsEver)
{
    const std::string script =
        "what\nCRC64\nGet CRC64\nInput=a\U0001F600b\nGet CRC64\nWide characters=off\nget\n1018=" +
        Repeated("a\u00E9\u3042\U0001F600b", 1'000'000) +
        "\nGet\nWide=maybe\nWide=on\n1019\nOK\nCRC64\nOK\nldap\nServer=there\n"
        "LDAP Server= localhost \nPort=70000\nDomain=d\nuser=Gr\xc3\xb6\xc3\x9f\nPassword=s e\n"
        "Auth=7\nauth=Simple bind\nAuth=2\nOK";
    const ProgramOutcome outcome = ProgramFolder().Run({{}, Lines(script), {{"LC_ALL", "C.UTF-8"}}});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");

    std::string shown = WithoutTimes(outcome.console);
    const std::size_t report = shown.find("Current Computer: ");
    const std::size_t last = shown.find("Customer service: ");
    ASSERT_NE(last, std::string::npos) << shown;
    shown.replace(report, shown.find('\n', last) - report, "(report)");
    EXPECT_EQ(shown, R"(ZT Diagnostics
(report)
Not understood. Press: Close, LDAP ..., FTP Logs to Support, CRC64
Dialog
Input: 
Wide characters: on
CRC64: 
CRC64 Hex: 
CRC64: 0
CRC64 Hex: 00000000
CRC64: 3752509983267961028
CRC64 Hex: 341397F2B8CB38C4
Wide characters: off
CRC64: 11861271432731879027
CRC64 Hex: A49BB3863C78E673
CRC64: 1298088850002102739
CRC64 Hex: 1203BCEE774549D3
Wide characters is on or off.
Wide characters: on
CRC64: 9523208474239763992
CRC64 Hex: 84293BA6B50D0618
Dialog
Input: 
Wide characters: on
CRC64: 
CRC64 Hex: 
DiagnosticsDlg
LDAP Server: 
Port: 389
Domain: 
Username: 
Password: 
Authentication: Try all (of Try all, Simple bind - SSL, Simple bind - plain text, NTLM, Digest, DPA, Negotiate)
Not understood. Press: OK, Cancel. Fill: LDAP Server, Port, Domain, Username, Password, Authentication
Authentication is one of Try all, Simple bind - SSL, Simple bind - plain text, NTLM, Digest, DPA, Negotiate.
Authentication is one of Try all, Simple bind - SSL, Simple bind - plain text, NTLM, Digest, DPA, Negotiate.

========= LDAP =========
Server:  localhost 
Domain: d
User: Größ

ldap_init begin ... end
LDAP: Failed to initialize LDAP session.  Err=89, Parameter Error: the port is not a number from 1 to 65535
END TEST
)");
}

// Each test begins inside the one before, and from a depth on a click waits until those have ended.
TEST(TerminalScript, IsObeyedInItsOrderHoweverManyTestsItAsksFor)
{
    constexpr int kTests = 40;
    std::vector<std::string> script;
    for (int number = 0; number < kTests; ++number)
        for (const char* line : {"LDAP", "LDAP Server=127.0.0.1", "Port=1", "Auth=1", "OK"})
            script.emplace_back(line);
    const std::string console = ProgramFolder().Run({{}, script}).console;
    EXPECT_EQ(std::ranges::count(Lines(WithoutTimes(console)), "END TEST"), kTests);
    EXPECT_EQ(console.find("Not understood"), std::string::npos) << console;
}
