// SPDX-License-Identifier: MIT
// What the console says when the server fails, row by row.
#include "tests/shipment/ShipmentRun.h"
#include "tests/support/ScriptedFtpServer.h"

#include <gmock/gmock.h>

#include <memory>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

constexpr std::uint16_t kFtpPort = 21;
constexpr std::size_t kMiddle = 1000000;
constexpr std::size_t kLargeLog = 16000000; // more than the system takes without the server
constexpr std::size_t kSmallLog = 100000;

struct Row
{
    std::string name;
    bool hasServer;
    FtpScript script;
    std::vector<std::string> verdicts; // beginnings
};

FtpScript Answering(std::map<std::string, std::string> answers)
{
    FtpScript script;
    script.answers = std::move(answers);
    return script;
}

FtpScript Breaking(std::int64_t at, const std::string& answer, const std::string& farewell)
{
    FtpScript script;
    script.breakAt = at;
    script.breakAnswer = answer;
    script.farewell = farewell;
    return script;
}

const std::string kDirect = "Passive upload failed - trying direct";
const std::string kSent = "Successfully sent logs to Support";

const std::vector<Row> kRows = {
    {"LoginRefused",
     true,
     Answering({{"PASS", "530 No Kesto-42.\r\n"}}),
     {"Error - 530 No ****.", kDirect, "Error - 530 No ****.", "Log FTP failed with: 530 No ****.",
      "### File size: "}},
    {"PassiveRefused",
     true,
     Answering({{"EPSV", "500 No.\r\n"}, {"PASV", "502 No passive.\r\n"}}),
     {"Error - 502 No passive.", kDirect, kSent}},
    {"BothRefused",
     true,
     Answering({{"EPSV", "500 No.\r\n"},
                {"PASV", "502 No passive.\r\n"},
                {"EPRT", "500 No.\r\n"},
                {"PORT", "501 No direct.\r\n"}}),
     {"Error - 502 No passive.", kDirect, "Error - 501 No direct.", "Log FTP failed with: 501 No direct.",
      "### File size: "}},
    {"HangUp",
     true,
     []
     {
         FtpScript script;
         script.greeting = kHangUp;
         return script;
     }(),
     {"Error - 1009 ", kDirect, "Error - 1009 ", "Log FTP failed with: 1009 ", "### File size: "}},
    {"BrokenAtOnce",
     true,
     Breaking(0, "", "426 Broken.\r\n"),
     {"Error - 426 Broken.", kDirect, "Error - 426 Broken.", "Log FTP failed with: 426 Broken.",
      "### File size: "}},
    {"BrokenInTheMiddle",
     true,
     Breaking(kMiddle, "", "426 Broken.\r\n"),
     {"Error - 426 Broken.", "Log FTP failed with: 426 Broken.", "### File size: "}},
    {"QuotaInTheMiddle",
     true,
     Breaking(kMiddle, "552 Quota.\r\n", ""),
     {"Error - 552 Quota.", "Log FTP failed with: 552 Quota.", "### File size: "}},
    {"RefusedAfterTheLastByte",
     true,
     Breaking(-1, "", "451 Disk gone.\r\n"),
     {"Error - 451 Disk gone.", "Log FTP failed with: 451 Disk gone."}},
    {"NobodyThere",
     false,
     {},
     {"Error - 1006 ", kDirect, "Error - 1006 ", "Log FTP failed with: 1006 ", "### File size: "}},
    {"TerminalSequences", true, Answering({{"PWD", "257 \"/\" \x1B[2J\x1B]0;title\x07.\r\n"}}), {kSent}},
};

} // namespace

class UploadFaults : public ShipmentTest, public testing::WithParamInterface<Row>
{
};

TEST_P(UploadFaults, GiveTheirLinesAndLeaveNothing)
{
    const Row& row = GetParam();
    WriteFile(Logs() / "random.log", RandomBytes(row.script.breakAt > 0 ? kLargeLog : kSmallLog));
    const auto server = row.hasServer ? std::make_unique<ScriptedFtpServer>(row.script, kFtpPort) : nullptr;
    const ProgramOutcome outcome = Ship("fault");
    EXPECT_TRUE(outcome.ended);
    EXPECT_EQ(0, outcome.exitCode);

    std::vector<testing::Matcher<std::string>> expected = {"Compression finished.  Exit Code: 0"};
    for (const std::string& verdict : row.verdicts)
        expected.push_back(StartsWith(verdict));
    EXPECT_THAT(Verdicts(outcome), testing::ElementsAreArray(expected)) << outcome.console;
    EXPECT_EQ(std::string::npos, outcome.console.find(kFtpPassword));
    for (const char c : outcome.console)
        EXPECT_TRUE(static_cast<unsigned char>(c) >= 0x20 || c == '\n') << static_cast<int>(c);
    EXPECT_THAT(Leftovers(), ElementsAre());
}

INSTANTIATE_TEST_SUITE_P(Rows, UploadFaults, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<Row>& row) { return row.param.name; });

using UnknownHost = ShipmentTest;

TEST_F(UnknownHost, IsSaidTwiceAndTheShipmentEnds)
{
    ReplaceSystemFile("/etc/hosts", "127.0.0.1 localhost\n");
    const ProgramOutcome outcome = Ship("fault");
    EXPECT_THAT(Verdicts(outcome),
                ElementsAre(HasSubstr("Exit Code: 0"), StartsWith("Error - 1005 "), kDirect,
                            StartsWith("Error - 1005 "), StartsWith("Log FTP failed with: 1005 "),
                            StartsWith("### File size: ")))
        << outcome.console;
    EXPECT_THAT(Leftovers(), ElementsAre());
    PointHostHere(TAVO_SUPPORT_HOST);
}
