// SPDX-License-Identifier: MIT
// What the console says when the server fails, row by row.
#include "tests/shipment/ShipmentRun.h"
#include "tests/support/ScriptedFtpServer.h"

using testing::StartsWith;
using namespace std::string_literals;

using UploadFaults = ShipmentTest;

TEST_F(UploadFaults, GiveTheirLinesAndLeaveNothing)
{
    constexpr std::size_t kMiddle = 1000000;
    constexpr std::size_t kLargeLog = 16000000; // more than the system takes without the server
    constexpr std::size_t kSmallLog = 100000;
    const std::map<std::string, std::string> bothRefused = {{"EPSV", "500 No.\r\n"},
                                                            {"PASV", "502 No passive.\r\n"},
                                                            {"EPRT", "500 No.\r\n"},
                                                            {"PORT", "501 No direct.\r\n"}};
    const std::pair<FtpScript, std::vector<testing::Matcher<std::string>>> rows[] = {
        {{.answers = {{"PASS", "530 No Kesto-42.\r\n"}}},
         {"Error - 530 No ****.", kDirect, "Error - 530 No ****.", "Log FTP failed with: 530 No ****.",
          StartsWith("### File size: 1")}},
        {{.answers = bothRefused},
         {"Error - 502 No passive.", kDirect, "Error - 501 No direct.", "Log FTP failed with: 501 No direct.",
          testing::EndsWith(", Sent: 0")}},
        {{.breakAt = kMiddle, .atBreak = "hang up"},
         {StartsWith("Error - 1009 "), StartsWith("Log FTP failed with: 1009 "),
          StartsWith("### File size: ")}},
        {{.farewell = "451 Disk gone.\r\n"},
         {"Error - 451 Disk gone.", "Log FTP failed with: 451 Disk gone."}},
        {{.answers = {{"PWD", "257 \"/\" \x1B[2J\x1B]0;title\x07\0.\r\n"s}}}, {kSent}},
        {{.certificate = "elsewhere.example"}, {kSent}}, // expired, and of another host
    };
    for (auto [script, verdicts] : rows)
    {
        WriteFile(Logs() / "random.log", RandomBytes(script.breakAt > 0 ? kLargeLog : kSmallLog));
        const ScriptedFtpServer server(script, kFtpPort);
        const ProgramOutcome outcome = Ship("fault");
        verdicts.insert(verdicts.begin(), "Compression finished.  Exit Code: 0");
        EXPECT_THAT(Verdicts(outcome), testing::ElementsAreArray(verdicts)) << outcome.console;
    }
}
