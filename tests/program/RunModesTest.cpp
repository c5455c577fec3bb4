// SPDX-License-Identifier: MIT
// The run modes that need no console, as the program that ships runs them: what they log, show and leave.
#include "foundation/Veld.h"
#include "tests/support/ProgramFolder.h"
#include "tests/support/System.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <chrono>
#include <future>

using testing::HasSubstr;
using testing::Not;

namespace
{

std::size_t Count(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

struct SetConfigRow
{
    std::vector<std::string> arguments;
    const char* logged; // null: no line about a setting
    const char* why;
};

const SetConfigRow kSetConfig[] = {
    {{"-SETCONFIG", "CustomerServiceText:Call us: now"},
     "Setting CustomerServiceText = 'Call us: now'",
     "only the first colon splits, and the blank survives the quotes"},
    {{"/setconfig", "customerservicetext:"}, "Setting customerservicetext = ''", "an empty value, any case"},
    {{"-SETCONFIG", "LogFileCount:7"}, "Setting LogFileCount = 7", "a number"},
    {{"-SETCONFIG", "LogFileCount:0x10"}, "Setting LogFileCount = 16", "a hexadecimal number"},
    {{"-SETCONFIG", "LogFileCount:seven"},
     "Setting LogFileCount = 0",
     "not a number: what was stored is told"},
    {{"-SETCONFIG", "NoSuchSetting:1"}, "Got unknown setting: NoSuchSetting", "unknown"},
    {{"-SETCONFIG", "LogFileCount"}, nullptr, "no colon"},
    {{"-SETCONFIG"}, nullptr, "no value"},
};

TEST(SetConfig, ChangesOneSettingAndSaysSoInTheLog)
{
    for (const SetConfigRow& row : kSetConfig)
    {
        SCOPED_TRACE(row.why);
        const ProgramFolder folder;
        const ProgramOutcome outcome = folder.Run({row.arguments, {}, {}});
        ASSERT_TRUE(outcome.ended) << outcome.console;
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.console, "");
        const std::string log = folder.Log();
        if (row.logged != nullptr)
            EXPECT_THAT(log, HasSubstr(row.logged));
        else
            EXPECT_EQ(Count(log, "etting "), 0u) << log;
        EXPECT_EQ(Count(log, "finished SETCONFIG"), 1u) << log;
        EXPECT_THAT(log.substr(0, log.find('\n')),
                    HasSubstr(": ZT " TAVO_VERSION " Tavo STARTING.  User = '"));
        EXPECT_THAT(log, HasSubstr("CmdLine: "));
    }
}

TEST(SetConfig, AUserWhoMayNotWriteIsTold)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "the user of this prefix may write everywhere";
    const ProgramFolder folder;
    // The switch with a value passes the gate, so the refusal is the store's.
    const ProgramOutcome outcome = folder.Run({{"-FTP_LOG", "x", "-SETCONFIG", "CustomerServiceText:Zq17"},
                                               {},
                                               {},
                                               std::chrono::seconds(30),
                                               true});
    ASSERT_TRUE(outcome.ended) << outcome.console;
    EXPECT_THAT(outcome.console,
                HasSubstr("Failed to Set Value CustomerServiceText.   Perhaps Tavo.exe needs to be run "
                          "as an administrator?"));
    EXPECT_THAT(folder.Run({}).console, Not(HasSubstr("Zq17")));
}

TEST(Gate, AUserWithoutRightsIsRefusedInEveryModeThatAsks)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "the user of this prefix is an administrator";
    const ProgramFolder folder;
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{}, {"-FTP_LOG"}, {"-SETCONFIG", "LogFileCount:3"}})
    {
        const ProgramOutcome outcome = folder.Run({arguments, {}, {}, std::chrono::seconds(30), true});
        ASSERT_TRUE(outcome.ended);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_THAT(outcome.console, HasSubstr("Administrator Warning"));
        EXPECT_THAT(outcome.console,
                    HasSubstr("This application can only be run by an administrator of this computer."));
        EXPECT_THAT(outcome.console, Not(HasSubstr("Current Computer")));
        EXPECT_THAT(outcome.errors, HasSubstr("log")) << "a log that cannot be written is told once";
    }
    // The reason stands in a log that he may write.
    const std::filesystem::path logs = folder.Path() / "Logs";
    std::filesystem::create_directories(logs);
    std::filesystem::permissions(logs, std::filesystem::perms(0777));
    folder.Run({{}, {}, {}, std::chrono::seconds(30), true});
    EXPECT_EQ(Count(folder.Log(), "console not admin"), 1u) << folder.Log();
}

TEST(Gate, StandsBehindTheForcedDump)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "the user of this prefix is an administrator";
    const ProgramFolder folder;
    const ProgramOutcome outcome =
        folder.Run({{"-FORCE_DEBUG_DUMP"}, {"No"}, {}, std::chrono::seconds(30), true});
    ASSERT_TRUE(outcome.ended);
    EXPECT_THAT(outcome.console, HasSubstr("Confirm Forced Dump"));
    EXPECT_THAT(outcome.console, Not(HasSubstr("Administrator Warning")));
}

struct DumpRow
{
    std::vector<std::string> arguments;
    std::vector<std::string> input;
    bool triggered;
    const char* reason;
    const char* shown; // null: nothing at all
};

const DumpRow kDumps[] = {
    {{"-FORCE_DEBUG_DUMP_SILENT"}, {}, true, "got FORCE_DEBUG_DUMP_SILENT", nullptr},
    {{"-FORCE_DEBUG_DUMP", "-FORCE_DEBUG_DUMP_SILENT"}, {}, true, "got FORCE_DEBUG_DUMP_SILENT", nullptr},
    {{"-FORCE_DEBUG_DUMP"}, {"Yes"}, true, "got FORCE_DEBUG_DUMP_SILENT", "Success"},
    {{"-FORCE_DEBUG_DUMP", "-SETCONFIG", "LogFileCount:3"},
     {"No"},
     false,
     "got FORCE_DEBUG_DUMP",
     "Confirm Forced Dump"},
    {{"/force_debug_dump"},
     {},
     false,
     "got FORCE_DEBUG_DUMP",
     "Are you sure you want to force the service to crash?"},
};

TEST(ForcedDump, SetsTheEventForSixSecondsForAServiceThatWaits)
{
    if (!LeaveNamedEventsOfOthers())
        GTEST_SKIP() << "no right to have named events of its own";
    for (const DumpRow& row : kDumps)
    {
        SCOPED_TRACE(row.reason + std::string(" ") + row.arguments[0]);
        // As the service holds it: the program opens this very object.
        const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, FORCE_CORE_EVENT);
        ASSERT_NE(event, nullptr);
        const ProgramFolder folder;
        auto run = std::async(std::launch::async, [&] { return folder.Run({row.arguments, row.input, {}}); });
        constexpr DWORD kPatience = 20000;
        const bool triggered = WaitForSingleObject(event, row.triggered ? kPatience : 4000) == WAIT_OBJECT_0;
        const auto set = std::chrono::steady_clock::now();
        EXPECT_EQ(triggered, row.triggered);
        while (triggered && WaitForSingleObject(event, 0) == WAIT_OBJECT_0)
            Sleep(20);
        const std::chrono::duration<double> duration = std::chrono::steady_clock::now() - set;
        const ProgramOutcome outcome = run.get();
        CloseHandle(event);

        ASSERT_TRUE(outcome.ended) << outcome.console;
        EXPECT_EQ(outcome.exitCode, 0);
        if (row.triggered)
        {
            EXPECT_GE(duration.count(), 5.0);
            EXPECT_LT(duration.count(), 15.0) << "a busy machine is late, but not by so much";
        }
        if (row.shown == nullptr)
            EXPECT_EQ(outcome.console, "");
        else
            EXPECT_THAT(outcome.console, HasSubstr(row.shown));
        const std::string log = folder.Log();
        EXPECT_EQ(Count(log, row.reason), 1u) << log;
        EXPECT_THAT(log, Not(HasSubstr("Setting LogFileCount"))) << "no other mode runs";
    }
}

} // namespace
