// SPDX-License-Identifier: MIT
// What the console says when the server fails, row by row.
#include "tests/shipment/ShipmentRun.h"
#include "tests/support/ScriptedFtpServer.h"

#include <gmock/gmock.h>

using testing::StartsWith;
using namespace std::string_literals;

namespace
{

constexpr std::size_t kMiddle = 1000000;
constexpr std::size_t kLargeLog = 16000000; // more than the system takes without the server
constexpr std::size_t kSmallLog = 100000;

// What the verdicts begin with.
using Verdict = std::vector<std::string>;

Verdict Before(const std::string& error, const std::string& directError)
{
    return {"Error - " + error, kDirect, "Error - " + directError, "Log FTP failed with: " + directError,
            "### File size: "};
}

struct Row
{
    std::string name;
    FtpScript script;
    Verdict verdicts;
    bool hasServer = true;
};

const std::vector<Row> kRows = {
    {"UnknownHost", {}, Before("1005 ", "1005 "), false},
    {"LoginRefused", {.answers = {{"PASS", "530 No Kesto-42.\r\n"}}}, Before("530 No ****.", "530 No ****.")},
    {"PassiveRefused",
     {.answers = {{"EPSV", "500 No.\r\n"}, {"PASV", "502 No passive.\r\n"}}},
     {"Error - 502 No passive.", kDirect, kSent}},
    {"BothRefused",
     {.answers = {{"EPSV", "500 No.\r\n"},
                  {"PASV", "502 No passive.\r\n"},
                  {"EPRT", "500 No.\r\n"},
                  {"PORT", "501 No direct.\r\n"}}},
     Before("502 No passive.", "501 No direct.")},
    {"HangUpInTheMiddle",
     {.breakAt = kMiddle, .atBreak = "hang up"},
     {"Error - 1009 ", "Log FTP failed with: 1009 ", "### File size: "}},
    {"RefusedAfterTheLastByte",
     {.farewell = "451 Disk gone.\r\n"},
     {"Error - 451 Disk gone.", "Log FTP failed with: 451 Disk gone."}},
    {"TerminalSequences", {.answers = {{"PWD", "257 \"/\" \x1B[2J\x1B]0;title\x07\0.\r\n"s}}}, {kSent}},
    {"NoHandshake", {.certificate = "none"}, Before("1007 ", "1007 ")},
    {"ExpiredCertificate", {.certificate = "elsewhere.example"}, {kSent}},
};

} // namespace

using UploadFaults = ShipmentTest;

TEST_F(UploadFaults, GiveTheirLinesAndLeaveNothing)
{
    for (const Row& row : kRows)
    {
        SCOPED_TRACE(row.name);
        WriteFile(Logs() / "random.log", RandomBytes(row.script.breakAt > 0 ? kLargeLog : kSmallLog));
        std::unique_ptr<ScriptedFtpServer> server;
        if (row.hasServer)
            server = std::make_unique<ScriptedFtpServer>(row.script, kFtpPort);
        else
            ReplaceSystemFile("/etc/hosts", "127.0.0.1 localhost\n");
        const ProgramOutcome outcome = Ship("fault");
        PointHostHere(TAVO_SUPPORT_HOST);

        std::vector<testing::Matcher<std::string>> expected = {"Compression finished.  Exit Code: 0"};
        for (const std::string& verdict : row.verdicts)
            expected.push_back(StartsWith(verdict));
        EXPECT_THAT(Verdicts(outcome), testing::ElementsAreArray(expected)) << outcome.console;
    }
}
