// SPDX-License-Identifier: MIT
// The terminal display as a person or a script has it: a process behind pipes or a terminal of its own.
#include "tests/display/Scenarios.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{

using Clock = std::chrono::steady_clock;

constexpr const char* kScenario = "TAVO_TEST_SCENARIO";
constexpr std::chrono::seconds kPatience{60};

[[noreturn]] void Become(const char* scenario, const char* locale)
{
    setenv(kScenario, scenario, 1);
    setenv("LC_ALL", locale, 1);
    signal(SIGPIPE, SIG_DFL);
    execl("/proc/self/exe", "display_tests", nullptr);
    _exit(127);
}

// Reads until the end, or until the text has come.
std::string ReadUntil(int stream, const std::string& wanted)
{
    std::string text;
    const auto deadline = Clock::now() + kPatience;
    while ((wanted.empty() || text.find(wanted) == std::string::npos) && Clock::now() < deadline)
    {
        pollfd ready{stream, POLLIN, 0};
        poll(&ready, 1, 100);
        char buffer[4096];
        const ssize_t count = ready.revents != 0 ? read(stream, buffer, sizeof buffer) : 0;
        if (ready.revents != 0 && count <= 0)
            break;
        text.append(buffer, static_cast<std::size_t>(count));
    }
    return text;
}

// The exit code; -1 when the process did not end in time, and was ended.
int ExitCode(pid_t process)
{
    int status = 0;
    for (const auto deadline = Clock::now() + kPatience; Clock::now() < deadline; usleep(10000))
    {
        if (waitpid(process, &status, WNOHANG) == process)
            return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
    }
    kill(process, SIGKILL);
    waitpid(process, &status, 0);
    return -1;
}

enum class Input
{
    Piped,
    Closed, // no standard input at all
    HeldOpen,
};

// What the scenario wrote, whose input is given whole.
std::string OutputOf(const char* scenario, const std::string& input, const char* locale = "C.UTF-8",
                     Input kind = Input::Piped)
{
    int in[2];
    int out[2];
    if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0)
        return "no pipe";
    const pid_t process = fork();
    if (process == 0)
    {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        if (kind == Input::Closed)
            close(STDIN_FILENO);
        Become(scenario, locale);
    }
    close(in[0]);
    close(out[1]);
    EXPECT_EQ(write(in[1], input.data(), input.size()), static_cast<ssize_t>(input.size()));
    if (kind != Input::HeldOpen)
        close(in[1]);
    std::string text = ReadUntil(out[0], "");
    EXPECT_EQ(ExitCode(process), 0) << text;
    if (kind == Input::HeldOpen)
        close(in[1]);
    close(out[0]);
    return text;
}

const std::string kOpened = "Controls\n"
                            "Label: \n"
                            "Box: off\n"
                            "1003: Red (of Red, Green, Green-blue)\n";
const std::string kCanceled = "2 |Red|0\n";

} // namespace

TEST(TerminalDisplay, ShowsTheFieldsAndIsCanceledByTheEndOfInput)
{
    EXPECT_EQ(OutputOf("commands", ""), kOpened + kCanceled);
    EXPECT_EQ(OutputOf("commands", "", "C.UTF-8", Input::Closed), kOpened + kCanceled);
}

TEST(TerminalDisplay, ObeysLines)
{
    const std::string usage = "Not understood. Press: Push, Default. Fill: Label, Box, 1003\n";
    // One after the other in one dialog; 1004 shows what its controls hold.
    struct Case
    {
        std::string input;
        std::string output;
    };
    const Case cases[] = {
        {"Push\n", "1004 |Red|0\n"},
        {"  pU \r\n", "1004 |Red|0\n"}, // any case, the beginning, blanks around
        {"\n\n", ""},
        {"Box\n", usage}, // a box is ticked, not pressed
        {"nothing=1\n", usage},
        {"p=u\n", usage},
        {"Label=a = b \n1004\n", "1004 a = b |Red|0\n"}, // all behind the first sign
        {"1001=x\nlab=y\n1004\n", "1004 y|Red|0\n"},
        {"1001=\xc3\xa4\xff\n1004\n", "1004 \xc3\xa4\xef\xbf\xbd|Red|0\n"}, // what is no text is replaced
        {"1001=\n1002=on\n", "Box: on\n1002 |Red|1\n"},
        {"box=ON\nbox=off\n", "Box: off\n1002 |Red|0\n"}, // it was on already
        {"box=maybe\n", "Box is on or off.\n"},
        {"1003=2\n1004\n", "1004 |Green-blue|0\n"},
        {"1003=green\n1004\n", "1004 |Green|0\n"}, // the whole name goes before a longer one
        {"1003=green-\n1004\n", "1004 |Green-blue|0\n"},
        {"1003=gre\n", "1003 is one of Red, Green, Green-blue.\n"}, // two begin so
        {"1003=3\n", "1003 is one of Red, Green, Green-blue.\n"},
        {"1006=x\n", usage},               // hidden
        {"1000=x\n", usage},               // read-only
        {"1003=0\n1004", "1004 |Red|0\n"}, // the last line needs no end
    };
    std::string input;
    std::string output = kOpened;
    for (const Case& row : cases)
    {
        input += row.input;
        output += row.output;
    }
    EXPECT_EQ(OutputOf("commands", input), output + kCanceled);
}

TEST(TerminalDisplay, DrivesTheDialogOnTop)
{
    const std::string inner = "Controls\nLabel: \nBox: off\n1003: Red (of Red, Green, Green-blue)\n"
                              "1004 in|Red|0\n2 in|Red|0\n";
    const std::string output = OutputOf("nested", "label=out\npush\nlabel=in\npush\n");
    EXPECT_EQ(output, kOpened + inner + "1004 out|Red|0\n2 out|Red|0\n");
}

TEST(TerminalDisplay, EndOfInputWaitsForTheHandlersThatWerePosted)
{
    EXPECT_EQ(OutputOf("long handler", ""), "Controls\nopens\nLabel: \nBox: off\n"
                                            "1003: Red (of Red, Green, Green-blue)\n"
                                            "works\nworks\nworks\nworks\nworks\nis done\n" +
                                                kCanceled);
    // A command is obeyed while the handler runs.
    EXPECT_THAT(OutputOf("long handler", "push\n"), HasSubstr("works\n1004 |Red|0\nworks\n"));
}

TEST(TerminalDisplay, LetsNoControlCharacterThrough)
{
    EXPECT_THAT(OutputOf("odd text", ""), EndsWith("^[]0;title^G^??31m\ttab^Mback\n"
                                                   "\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80?.\n"));
}

TEST(TerminalDisplay, WritesWhatThePlainLocaleCan)
{
    const std::string output = OutputOf("odd text", "", "C");
    for (const char character : output)
        EXPECT_LT(static_cast<unsigned char>(character), 0x80);
    EXPECT_THAT(output, EndsWith("?.\n"));
    EXPECT_THAT(OutputOf("odd text", "", "no_SUCH.locale"), EndsWith("?.\n"));
}

TEST(TerminalDisplay, ShowsWhatTheProgramChanges)
{
    EXPECT_THAT(OutputOf("changes", ""),
                EndsWith("a line left open\nLabel: new\nBox: on\n, its rest\nall anew\n"));
}

TEST(TerminalDisplay, AsksAndTakesAnAnswer)
{
    const std::string asked = "Question\nSure?\nReally?\nPress: ";
    EXPECT_THAT(OutputOf("boxes", "y\nO\ncancel\nn\n"),
                EndsWith(asked + "Yes, No\nanswer 6\n" + asked + "OK\nanswer 1\n" + asked +
                         "OK, Cancel\nanswer 2\n" + asked + "Yes, No, Cancel\nanswer 7\n"));
    EXPECT_THAT(OutputOf("boxes", ""),
                EndsWith(asked + "Yes, No\nanswer 7\n" + asked + "OK\nanswer 1\n" + asked +
                         "OK, Cancel\nanswer 2\n" + asked + "Yes, No, Cancel\nanswer 7\n"));
}

TEST(TerminalDisplay, SleepsWhileThereIsNothingToDo)
{
    EXPECT_THAT(OutputOf("idle", "", "C.UTF-8", Input::HeldOpen), EndsWith("idle\n"));
}

TEST(TerminalDisplay, GoesOnWhenNobodyReadsAnyMore)
{
    int out[2];
    ASSERT_EQ(pipe2(out, O_CLOEXEC), 0);
    const pid_t process = fork();
    if (process == 0)
    {
        dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        Become("much text", "C.UTF-8");
    }
    close(out[1]);
    ReadUntil(out[0], "x1\n");
    close(out[0]);
    EXPECT_EQ(ExitCode(process), 0);
}

TEST(TerminalDisplay, WritesAllOfAMuchLongerTextThanAPipeHolds)
{
    const std::string output = OutputOf("much text", "");
    EXPECT_GT(output.size(), 65536u);
    EXPECT_TRUE(output.ends_with("x299\n"));
}

TEST(TerminalDisplay, PromptsOnATerminal)
{
    EXPECT_THAT(OutputOf("commands", "push\n"), Not(HasSubstr("> ")));

    int terminal = -1;
    const pid_t process = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (process == 0)
        Become("commands", "C.UTF-8");
    EXPECT_THAT(ReadUntil(terminal, "> "),
                AllOf(StartsWith("Controls\r\n"), EndsWith("Press: Push, Default\r\n> ")));
    ASSERT_EQ(write(terminal, "push\n", 5), 5);
    EXPECT_THAT(ReadUntil(terminal, "> "), EndsWith("push\r\n1004 |Red|0\r\n> "));
    // The end of input, as the key Ctrl-D.
    ASSERT_EQ(write(terminal, "\x04", 1), 1);
    EXPECT_THAT(ReadUntil(terminal, ""), EndsWith("\r  \r2 |Red|0\r\n"));
    EXPECT_EQ(ExitCode(process), 0);
    close(terminal);
}

int main(int argc, char** argv)
{
    if (const char* const scenario = std::getenv(kScenario))
        return RunScenario(scenario);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
