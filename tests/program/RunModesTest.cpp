// SPDX-License-Identifier: MIT
// The run modes that need no console, as the program that ships runs them: all that they log, show and leave.
#include "tests/support/AgentFolder.h"
#include "tests/support/OwnNetwork.h"
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <future>
#include <regex>

// The answers that the terminal offers.
static std::string Press(const std::string& buttons)
{
    return RunsOnWindows() ? "" : "Press: " + buttons + "\n";
}

static std::string CommandLineOf(const std::vector<std::string>& arguments)
{
    std::string line;
    for (const std::string& argument : arguments)
        line += argument.find(' ') == std::string::npos ? " " + argument : " \"" + argument + '"';
    return line;
}

// What a run logs, less its times and numbers: its first lines, those of its mode, and the last one.
static void ExpectLog(const ProgramFolder& folder, const std::string& user,
                      const std::vector<std::string>& arguments, const std::string& lines,
                      const std::string& end)
{
    const std::regex head(R"([0-9-]{10} [0-9:.]{12} [+-]\d{4} \[\d+:\d+( Main)?\] )");
    const std::string program = folder.Program().string(), quote = RunsOnWindows() ? "\"" : "";
    EXPECT_EQ(std::regex_replace(folder.Log(), head, ""),
              "progress: ZT " TAVO_VERSION " Tavo STARTING.  User = '" + user +
                  "'\nprogress: Module loaded: " + program + "\nprogress: CmdLine: " + quote + program +
                  quote + CommandLineOf(arguments) + "\n" + lines + "progress: Shutdown of application " +
                  end + "\n");
}

static std::string ThisUser()
{
    wchar_t name[256] = L"";
    DWORD size = std::size(name);
    GetUserNameW(name, &size);
    return fs::path(name).string();
}

static void OpenLog(const ProgramFolder& folder)
{
    fs::create_directories(folder.Path() / "Logs");
    fs::permissions(folder.Path() / "Logs", fs::perms(0777));
}

const std::string kFailureBox = "Failed to Set Value\nFailed to Set Value ";
const std::string kFailureHint = ".   Perhaps Tavo.exe needs to be run as an administrator?\n" + Press("OK");

const std::string kNotALevel = "failure: LogLevel is not changed: it takes a number from 0 to 2\n";

TEST(SetConfig, ChangesOneSettingAndSaysSoInTheLog)
{
    // The switch's value, what is logged, and the setting that a box tells of.
    const std::tuple<std::vector<std::string>, std::string, std::string> rows[] = {
        // Only the first colon splits, and the blank survives the quotes.
        {{"CustomerServiceText:Call us: now"},
         "progress: Setting CustomerServiceText = 'Call us: now'\n",
         ""},
        {{"customerservicetext:"}, "progress: Setting customerservicetext = ''\n", ""},
        {{"LogFileCount:0x10"}, "progress: Setting LogFileCount = 16\n", ""},
        {{"LogLevel:0"}, "progress: Setting LogLevel = 0\n", ""}, // no later run logs anything
        {{"LogLevel:on"}, kNotALevel + "failure: Failed to set LogLevel = 4294967295\n", "LogLevel"},
        {{"NoSuchSetting:1"}, "failure: Got unknown setting: NoSuchSetting\n", ""},
        {{":5"}, "failure: Got unknown setting: \n", ""},
        {{"LogFileCount"}, "", ""}, // no colon
        {{}, "", ""},
    };
    for (const auto& [value, logged, refused] : rows)
    {
        std::vector<std::string> arguments = value;
        arguments.insert(arguments.begin(), "-SETCONFIG");
        SCOPED_TRACE(CommandLineOf(arguments));
        const ProgramFolder folder;
        const ProgramOutcome outcome = folder.Run({arguments, {}, {}});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.console, refused.empty() ? "" : kFailureBox + refused + kFailureHint);
        ExpectLog(folder, ThisUser(), arguments, logged, "4: finished SETCONFIG");
    }
}

TEST(Gate, AUserWithoutRightsIsRefusedInEveryModeThatAsks)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "the user of this prefix is an administrator";
    const std::string warning =
        "Administrator Warning\nThis application can only be run by an administrator of this computer.\n" +
        Press("OK");
    // The arguments, what is shown and logged, and the end.
    const std::tuple<std::vector<std::string>, std::string, std::string, std::string> rows[] = {
        {{}, warning, "", "2: console not admin"},
        {{"-FTP_LOG"}, warning, "", "2: console not admin"},
        {{"-SETCONFIG", "LogFileCount:3"}, warning, "", "2: console not admin"},
        // The switch with a value passes the gate, so the refusal is the store's.
        {{"-FTP_LOG", "x", "-SETCONFIG", "CustomerServiceText:Zq17"},
         kFailureBox + "CustomerServiceText" + kFailureHint,
         "failure: CustomerServiceText is not changed: Tavo.settings.lock cannot be had: Permission "
         "denied\n"
         "failure: Failed to set CustomerServiceText = 'Zq17'\n",
         "4: finished SETCONFIG"},
    };
    for (const auto& [arguments, shown, logged, end] : rows)
    {
        const ProgramFolder folder;
        OpenLog(folder);
        const ProgramOutcome outcome = folder.Run({.arguments = arguments, .asOtherUser = true});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.console, shown);
        ExpectLog(folder, "nobody", arguments, logged, end);
        EXPECT_EQ(folder.Read("Tavo.settings.json"), "");
    }
    const ProgramFolder closed;
    EXPECT_EQ(closed.Run({.asOtherUser = true}).errors, "Tavo: the log in " +
                                                            (closed.Path() / "Logs/").string() +
                                                            " cannot be written: Permission denied\n");
}

const std::string kConfirm =
    "Confirm Forced Dump\nContinuing will cause a controlled crash of the monitoring service in "
    "order to create a debug dump file.  You can restart the service (if it doesn't start again "
    "by itself).\n\nAre you sure you want to force the service to crash?\n" +
    Press("Yes, No");
const std::string kSuccess =
    "Success\nTriggered debug dump.  The .dmp file should be in the log directory in just a moment.\n" +
    Press("OK");

TEST(ForcedDump, SetsTheEventForSixSecondsForAServiceThatWaits)
{
    using Seconds = std::chrono::duration<double>;
    if (!EnterOwnNetwork())
        GTEST_SKIP() << "no right to have named events of its own";
    // The arguments, the input, what is shown, whether the event is set, and whether the user has no rights.
    const std::tuple<std::vector<std::string>, std::vector<std::string>, std::string, bool, bool> rows[] = {
        {{"-FORCE_DEBUG_DUMP_SILENT"}, {}, "", true, false},
        {{"-FORCE_DEBUG_DUMP", "-FORCE_DEBUG_DUMP_SILENT"}, {}, "", true, false},
        {{"-FORCE_DEBUG_DUMP"}, {"Yes"}, kConfirm + kSuccess, true, false},
        {{"-FORCE_DEBUG_DUMP", "-SETCONFIG", "LogFileCount:3"}, {"No"}, kConfirm, false, false},
        {{"/force_debug_dump"}, {}, kConfirm, false, false},
        {{"-FORCE_DEBUG_DUMP"}, {"No"}, kConfirm, false, true},
    };
    for (const auto& [arguments, input, shown, triggered, asNobody] : rows)
    {
        if (asNobody && RunsOnWindows())
            continue; // the user of this prefix is an administrator
        SCOPED_TRACE(CommandLineOf(arguments));
        // As the service holds it: the program opens this very object.
        const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, L"Global\\Tavo_ForceCoreDump");
        ASSERT_NE(event, nullptr);
        const ProgramFolder folder;
        OpenLog(folder);
        const auto start = std::chrono::steady_clock::now();
        auto run = std::async(
            std::launch::async,
            [&] { return folder.Run({.arguments = arguments, .input = input, .asOtherUser = asNobody}); });
        constexpr DWORD kPatience = 20000;
        EXPECT_EQ(WaitForSingleObject(event, triggered ? kPatience : 1000) == WAIT_OBJECT_0, triggered);
        const auto set = std::chrono::steady_clock::now();
        while (triggered && WaitForSingleObject(event, 0) == WAIT_OBJECT_0)
            Sleep(20);
        const auto reset = std::chrono::steady_clock::now();
        const ProgramOutcome outcome = run.get();
        EXPECT_EQ(WaitForSingleObject(event, 0), DWORD{WAIT_TIMEOUT});
        CloseHandle(event);

        EXPECT_EQ(outcome.exitCode, 0);
        if (triggered)
        {
            EXPECT_GE(Seconds(reset - start).count(), 6.0);
            EXPECT_GE(Seconds(reset - set).count(), 5.0) << "a busy machine sees it late";
            EXPECT_LT(Seconds(reset - set).count(), 15.0);
        }
        EXPECT_EQ(outcome.console, shown);
        ExpectLog(folder, asNobody ? "nobody" : ThisUser(), arguments, "",
                  triggered ? "2: got FORCE_DEBUG_DUMP_SILENT" : "2: got FORCE_DEBUG_DUMP");
    }
}

TEST(ForcedDump, MakesAnEventThatTheServicesAccountMayOpen)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "this prefix has one user";
    if (!EnterOwnNetwork())
        GTEST_SKIP() << "no right to have named events of its own";
    const ProgramFolder folder;
    auto run = std::async(std::launch::async, [&] { return folder.Run({{"-FORCE_DEBUG_DUMP_SILENT"}}); });
    while (folder.Log().find("CmdLine") == std::string::npos)
        Sleep(10);
    Sleep(500); // and the event is there
    const AgentFolder service;
    EXPECT_EQ(service.Run({"open:" + Encoded("Global\\Tavo_ForceCoreDump")}, true).answers,
              std::to_string(ERROR_ALREADY_EXISTS) + "\n");
    EXPECT_TRUE(run.get().ended);
}

TEST(Console, LogsItsStartAndItsEndAndListensForTheShutdown)
{
    const std::pair<int, const char*> rows[] = {{0, "finished tavo app"}, {SIGTERM, "ended by SIGTERM"}};
    for (const auto& [number, reason] : rows)
    {
        SCOPED_TRACE(reason);
        const ProgramFolder folder;
        bool heard = false;
        const auto listens = [&heard](const std::string&, int process)
        {
            std::error_code gone;
            for (const auto& thread :
                 fs::directory_iterator("/proc/" + std::to_string(process) + "/task", gone))
                heard = heard || ReadFile(thread.path() / "comm") == "GUIListenForShu\n";
            return heard;
        };
        const ProgramOutcome outcome = folder.Run({.signal = number, .signalWhen = listens});
        EXPECT_EQ(outcome.exitCode, -number);
        EXPECT_EQ(heard, number != 0);
        ExpectLog(folder, ThisUser(), {}, "", std::string("2: ") + reason);
        if (RunsOnWindows())
            break; // no other process sends signals there, and rights are no bits
        EXPECT_EQ(fs::status(folder.Path() / "Logs").permissions(), fs::perms(0750));
        EXPECT_EQ(fs::status(folder.Path() / "Logs/Tavo.log").permissions(), fs::perms(0640));
    }
}
