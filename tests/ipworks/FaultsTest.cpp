// SPDX-License-Identifier: MIT
// What servers and networks do wrong. Each row of the table is one fault, with the result, the text that is
// left of it and how much of the file went out.
#include "tests/ipworks/Recorder.h"
#include "tests/support/ProgramFolder.h"
#include "tests/support/ScriptedFtpServer.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using namespace std::string_literals;

namespace
{

constexpr std::size_t kFileBytes = 30000000;
constexpr std::int64_t kHalf = 4000000; // the system takes some more on its own, but not the rest

enum class Moved
{
    eNothing,
    eSome,
    eAll,
};

struct Fault
{
    std::string name;
    FtpScript script;
    int code;
    std::string text; // part of the last error
    Moved moved;
    bool passive = true;
};

FtpScript Answering(std::map<std::string, std::string> answers)
{
    FtpScript script;
    script.answers = std::move(answers);
    return script;
}

FtpScript Greeting(const std::string& greeting)
{
    FtpScript script;
    script.greeting = greeting;
    return script;
}

FtpScript Ending(const std::string& farewell)
{
    FtpScript script;
    script.farewell = farewell;
    return script;
}

FtpScript Breaking(std::int64_t at, FtpScript::Break how, const std::string& farewell)
{
    FtpScript script = Ending(farewell);
    script.breakAt = at;
    script.atBreak = how;
    return script;
}

FtpScript QuotaAtHalf()
{
    FtpScript script = Breaking(kHalf, FtpScript::Break::eReset, "");
    script.breakAnswer = "552 Quota.\r\n";
    return script;
}

using Break = FtpScript::Break;

const std::vector<Fault> kFaults = {
    {"NoRoomAtTheGreeting", Greeting("421 Too many users.\r\n"), 421, "421 Too many users.", Moved::eNothing},
    {"HangUpAtTheGreeting", Greeting(kHangUp), kIPWorksConnectionLost, "", Moved::eNothing},
    {"StallAtTheGreeting", Greeting(kSilence), kIPWorksStalled, "2 seconds", Moved::eNothing},
    {"LoginRefused", Answering({{"PASS", "530-No.\r\n530 User zt-ftp cannot log in with Kesto-42.\r\n"}}),
     530, "530 User zt-ftp cannot log in with ****.", Moved::eNothing},
    {"HangUpAtTheLogin", Answering({{"PASS", kHangUp}}), kIPWorksConnectionLost, "", Moved::eNothing},
    {"PassiveRefused", Answering({{"EPSV", "500 No.\r\n"}, {"PASV", "502 No passive.\r\n"}}), 502,
     "502 No passive.", Moved::eNothing},
    {"PassiveAnswerIsNonsense",
     Answering({{"EPSV", "500 No.\r\n"}, {"PASV", "227 Come in (somewhere).\r\n"}}), kIPWorksUnexpectedAnswer,
     "", Moved::eNothing},
    {"DirectRefused", Answering({{"EPRT", "500 No.\r\n"}, {"PORT", "501 No direct.\r\n"}}), 501,
     "501 No direct.", Moved::eNothing, false},
    {"DirectNeverComes", Answering({{"EPRT", "200 Noted.\r\n"}, {"STOR", kSilence}}), kIPWorksStalled,
     "2 seconds", Moved::eNothing, false},
    {"NameRefused", Answering({{"STOR", "553 Not this name.\r\n"}}), 553, "553 Not this name.",
     Moved::eNothing},
    {"DataResetAtOnce", Breaking(0, Break::eReset, "426 Broken.\r\n"), 426, "426 Broken.", Moved::eNothing},
    {"DataResetAtHalf", Breaking(kHalf, Break::eReset, "426 Broken.\r\n"), 426, "426 Broken.", Moved::eSome},
    {"DataClosedAtHalfAndCalledComplete", Breaking(kHalf, Break::eClose, "226 Received.\r\n"),
     kIPWorksConnectionLost, "", Moved::eSome},
    {"HangUpAtHalf", Breaking(kHalf, Break::eHangUp, ""), kIPWorksConnectionLost, "", Moved::eSome},
    {"QuotaAtHalf", QuotaAtHalf(), 552, "552 Quota.", Moved::eSome},
    {"StallAtHalf", Breaking(kHalf, Break::eStall, ""), kIPWorksStalled, "2 seconds", Moved::eSome},
    {"RefusalAfterTheLastByte", Ending("451 Disk gone.\r\n"), 451, "451 Disk gone.", Moved::eAll},
    {"HangUpAfterTheLastByte", Ending(kHangUp), kIPWorksConnectionLost, "", Moved::eAll},
    {"StallAfterTheLastByte", Ending(kSilence), kIPWorksStalled, "2 seconds", Moved::eAll},
    {"AnswersInSingleBytes",
     []
     {
         FtpScript script;
         script.inSingleBytes = true;
         return script;
     }(),
     0, "", Moved::eAll},
    {"SilentGoodbye", Answering({{"QUIT", kSilence}}), 0, "", Moved::eAll},
    // WinINet takes no line of that length, and reads byte by byte on.
    {"GreetingOf20KB", Greeting("220 " + std::string(20000, 'x') + "\r\n"),
     RunsOnWindows() ? kIPWorksUnexpectedAnswer : 0, "", RunsOnWindows() ? Moved::eNothing : Moved::eAll},
    {"GreetingOf10MB", Greeting("220 " + std::string(10000000, 'x') + "\r\n"),
     RunsOnWindows() ? kIPWorksStalled : kIPWorksConnectionLost, "", Moved::eNothing},
    {"GreetingOf300Lines",
     []
     {
         std::string greeting;
         for (int i = 0; i < 300; ++i)
             greeting += "220-More.\r\n";
         return Greeting(greeting + "220 Ready.\r\n");
     }(),
     0, "", Moved::eAll},
    {"AnswersForATerminal",
     Answering({{"PWD", "257 \"/\" \x1B[2J\x1B]0;title\x07\0\x9B\x33\x31m\xC2\x9B\x33\x32m.\r\n"s}}), 0, "",
     Moved::eAll},
};

std::string ShortEnough(const std::string& event)
{
    return event.size() <= 1100 ? "" : "an event of " + std::to_string(event.size()) + " bytes";
}

} // namespace

class FaultTest : public testing::TestWithParam<Fault>
{
};

TEST_P(FaultTest, GivesItsResultAndNoMore)
{
    const Fault& fault = GetParam();
    static const std::string content = TestBytes(kFileBytes);
    const TemporaryFile file(content);
    ScriptedFtpServer server(fault.script);
    Recorder recorder(server.Port());
    recorder.SetLocalFile(file.Path());
    recorder.SetNumber(kIPWorksPassive, fault.passive ? 1 : 0);
    const bool isSilent = fault.code == kIPWorksStalled || fault.script.answers.contains("QUIT");
    if (isSilent)
        recorder.Config("StallSeconds=2");

    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(fault.code, recorder.Upload()) << recorder.LastError();
    if (isSilent)
    {
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(25));
    }
    EXPECT_THAT(recorder.LastError(), HasSubstr(fault.text));

    const std::int64_t sent = recorder.progress.empty() ? 0 : recorder.progress.back().bytes;
    const int percent = recorder.progress.empty() ? 0 : recorder.progress.back().percent;
    switch (fault.moved)
    {
    case Moved::eNothing:
        EXPECT_EQ(0, sent);
        break;
    case Moved::eSome:
        EXPECT_GT(sent, 0);
        EXPECT_LT(sent, std::int64_t{kFileBytes});
        EXPECT_LT(percent, 100);
        break;
    case Moved::eAll:
        EXPECT_EQ(std::int64_t{kFileBytes}, sent);
        EXPECT_EQ(100, percent);
        break;
    }

    // One error for a failed upload, none for a good one; the start comes first and the end last.
    const std::string error = "error " + std::to_string(fault.code) + " " + recorder.LastError();
    EXPECT_EQ(fault.code == 0 ? std::vector<std::string>{} : std::vector<std::string>{error},
              recorder.Of("error"));
    EXPECT_EQ("started archive.zip", recorder.events.front());
    EXPECT_EQ("ended " + std::to_string(fault.code), recorder.events.back());
    EXPECT_LT(recorder.events.size(), 200U);
    for (const std::string& event : recorder.events)
    {
        EXPECT_EQ(std::string::npos, event.find(kTestPassword)) << event;
        EXPECT_EQ("", ShortEnough(event));
        for (const char c : event)
            EXPECT_TRUE(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F) << event;
        EXPECT_EQ(std::string::npos, event.find("\xC2\x9B")) << event;
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultTest, testing::ValuesIn(kFaults),
                         [](const testing::TestParamInfo<Fault>& row) { return row.param.name; });

TEST(Upload, HostThatCannotBeFoundAndPortThatIsClosed)
{
    const TemporaryFile file("content");
    std::uint16_t port = 0;
    {
        const TcpListener listener(0);
        port = listener.Port();
    }
    Recorder recorder(port);
    recorder.SetLocalFile(file.Path());
    EXPECT_EQ(kIPWorksConnectFailed, recorder.Upload());
    EXPECT_THAT(recorder.LastError(), testing::StartsWith("1006 "));
    recorder.SetText(kIPWorksRemoteHost, "nowhere.invalid");
    EXPECT_EQ(kIPWorksHostNotFound, recorder.Upload());
    EXPECT_THAT(recorder.LastError(), testing::ContainsRegex("1005 .*nowhere.invalid"));
    EXPECT_TRUE(recorder.progress.empty());
}

// What moves is never cut off, however slowly: the whole takes longer than the rule's three seconds.
TEST(Upload, SlowServerThatMovesIsWaitedFor)
{
    const TemporaryFile file(TestBytes(kFileBytes));
    FtpScript script;
    script.bytesPerSecond = kFileBytes / 4;
    ScriptedFtpServer server(script);
    Recorder recorder(server.Port());
    recorder.Config("StallSeconds=3");
    recorder.SetLocalFile(file.Path());
    EXPECT_EQ(0, recorder.Upload()) << recorder.LastError();
    EXPECT_EQ(kFileBytes, server.Uploaded().size());
}
