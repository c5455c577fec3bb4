// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"
#include "tests/support/AgentFolder.h"
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>

#include <thread>

using namespace testing;
using namespace std::string_literals;

// Their names, their defaults, and what they take: a text, or numbers up to this.
const std::tuple<std::string, std::string, unsigned> kSettings[] = {
    {"LogDirectory", "Logs", 0}, {"CustomerServiceText", "Customer service: https://support.zt.example", 0},
    {"LogLevel", "2", 2},        {"LogSizeLimitKB", "4096", 4'194'304},
    {"LogFileCount", "5", 99},   {"RecordLockWaits", "0", 1},
};

static std::string TakenBy(unsigned most)
{
    return "it takes a " + (most == 0 ? "text" : "number from 0 to " + std::to_string(most)) + "\n";
}

static std::string AllOf(const AgentFolder& folder)
{
    std::vector<std::string> steps{"init"};
    for (const auto& [name, fallback, most] : kSettings)
        steps.push_back("get:" + name);
    return folder.Answers(steps);
}

static std::string Nested(std::size_t levels)
{
    return "{\"a\": " + std::string(levels, '[') + std::string(levels, ']') + "}";
}

TEST(Settings, AreFoundByTheirWholeNameInAnyCase)
{
    for (const wchar_t* name : {L"", L"LogLeve", L"LogLevels", L" LogLevel", L"339", L"LogLe\u0475el"})
        EXPECT_EQ(GetConfigID(name, true), eConfigNone) << StrConverter(name);
    EXPECT_EQ(GetConfigID(nullptr, true), eConfigNone);
    EXPECT_EQ(GetConfigType(eConfigNone), eParamUnknown);
    // A library that is put into another's place knows them by these numbers.
    int number = 337;
    for (const auto& [name, fallback, most] : kSettings)
    {
        const eConfigID id = GetConfigID(ZTString(name.c_str()), true);
        EXPECT_EQ(id, number++);
        EXPECT_EQ(GetConfigType(id), most == 0 ? 2 : 13);
    }
    EXPECT_EQ(GetConfigID(L"LOGSIZELIMITKB", true), 340);
    EXPECT_EQ(GetConfigID(L"RECORDLOCKWAITS", true), 342);
}

TEST(Settings, BeyondTheirRangeAreRefusedAndTheLogSaysWhy)
{
    for (const auto& [name, fallback, most] : kSettings)
    {
        if (most == 0)
            continue;
        const AgentFolder folder;
        const std::string highest = std::to_string(most);
        EXPECT_EQ(
            folder.Answers({"set:" + name + ":" + highest, "set:" + name + ":" + std::to_string(most + 1),
                            "set:" + name + ":none", "reset:" + name, "get:" + name}),
            "true\nfalse\nfalse\n" + highest + "\n");
        EXPECT_THAT(folder.Log(), HasSubstr("failure: " + name + " is not changed: " + TakenBy(most)));
    }
    EXPECT_FALSE(
        SetConfigStr(eConfigCustomerServiceText, std::wstring(1, wchar_t{0xD800}).c_str(), true, nullptr))
        << "half of a surrogate pair has no place in the file";
    const AgentFolder folder;
    const std::string setText = "set:CustomerServiceText:";
    EXPECT_EQ(folder.Answers({setText + Encoded("\"q\\\": {\n\tü 😀"), setText + Encoded("Gr\xFC\xDF"),
                              "reset:CustomerServiceText", "get:CustomerServiceText"}),
              "true\nfalse\n\"q\\\": {\n\tü 😀\n")
        << "nor has a byte that is not UTF-8";
    EXPECT_THAT(folder.Log(), HasSubstr("failure: A setting is not changed: its text is not UTF-8, or holds "
                                        "half a character\n"));
}

TEST(Settings, LeaveWhatAPersonWroteInItsPlaceAlsoAsAnEditorOfWindowsSavesIt)
{
    const std::pair<const char*, const char*> rows[] = {
        {R"({"note": ["kept ü", 1.5, null], "loglevel": 1, "Other": {"a": true}})", R"({
  "note": [
    "kept ü",
    1.5,
    null
  ],
  "loglevel": 0,
  "Other": {
    "a": true
  },
  "LogFileCount": 9
}
)"},
        {"\xEF\xBB\xBF{\r\n  \"LogLevel\": 1\r\n}\r\n", "{\n  \"LogLevel\": 0,\n  \"LogFileCount\": 9\n}\n"}};
    for (const auto& [before, after] : rows)
    {
        const AgentFolder folder;
        folder.Write("Tavo.settings.json", before);
        EXPECT_EQ(folder.Answers({"get:LogLevel", "set:LogLevel:0", "set:LogFileCount:9"}),
                  "1\ntrue\ntrue\n");
        EXPECT_EQ(folder.Settings(), after);
    }
}

TEST(Settings, OfTheWrongTypeCountAsTheirDefaultsAndTheLogSaysSo)
{
    const AgentFolder folder;
    folder.Write(
        "Tavo.settings.json",
        R"({"LOGDIRECTORY": 5, "CUSTOMERSERVICETEXT": ["x"], "LOGLEVEL": "two", "LOGSIZELIMITKB": 1.5,
                     "LOGFILECOUNT": 100, "RECORDLOCKWAITS": 4294967296})");
    std::string fallbacks;
    const std::string answers = AllOf(folder);
    for (const auto& [name, fallback, most] : kSettings)
    {
        fallbacks += fallback + "\n";
        EXPECT_THAT(folder.Log(),
                    HasSubstr("The default of " + name + " holds, not what is stored: " + TakenBy(most)));
    }
    EXPECT_EQ(answers, fallbacks);
}

TEST(Settings, ThatCannotBeUnderstoodAreSetAside)
{
    const AgentFolder folder;
    int number = 0;
    for (const std::string& broken : {"{\"LogLevel\": 1"s, ""s, "[1]"s, "\"x\""s, "{\"a\": \"\xFF\"}"s,
                                      "\0\0\0\0"s, Nested(65), Nested(100'000)})
    {
        const std::string aside = "Tavo.settings.broken-" + std::to_string(++number) + ".json";
        folder.Write("Tavo.settings.json", broken);
        // A writer and a reader meet it in turn.
        const bool writes = number % 2 == 0;
        const AgentOutcome outcome =
            folder.Run({writes ? "set:LogLevel:2" : "get:LogLevel", "get:LogFileCount"});
        EXPECT_EQ(outcome.answers, writes ? "true\n5\n" : "2\n5\n") << number;
        const std::string told = "Tavo: " + (folder.Path() / "Tavo.settings.json").string() +
                                 " could not be understood and was moved to " + aside + ": defaults hold\n";
        EXPECT_EQ(outcome.errors, told);
        EXPECT_EQ(folder.Read(aside), broken);
        EXPECT_THAT(folder.Log(),
                    HasSubstr("failure: Tavo.settings.json could not be understood and was moved to " +
                              aside + ": defaults hold\n"));
        EXPECT_EQ(folder.Settings(), writes ? "{\n  \"LogLevel\": 2\n}\n" : "");
        EXPECT_EQ(folder.Run({"get:LogLevel"}).errors, writes ? "" : told)
            << "until there are settings again";
    }
    folder.Write("Tavo.settings.json", Nested(64));
    EXPECT_EQ(folder.Answers({"get:LogLevel"}), "2\n");
    EXPECT_EQ(folder.Settings(), Nested(64)) << "deep, but not too deep";
}

TEST(Settings, ThatTheUserMayNotWriteAreRefusedAndKept)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "Wine knows one user, who may write what root may";
    const AgentFolder folder;
    folder.Run({"set:LogLevel:1"});
    const std::string before = folder.Settings();
    fs::permissions(folder.Path() / "Tavo.settings.json", fs::perms(0444));
    // Of whom the folder may be written.
    fs::permissions(folder.Path(), fs::perms(0777));
    EXPECT_EQ(folder.Run({"set:LogLevel:0", "reset:LogLevel", "get:LogLevel"}, true).answers, "false\n1\n");
    EXPECT_EQ(folder.Settings(), before);
    EXPECT_THAT(folder.Names("Tavo.settings"), ElementsAre("Tavo.settings.json"));
}

TEST(Settings, ThatCannotBeUnderstoodNorMovedAwayHoldNobodyUp)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "Wine knows one user, who may write what root may";
    const AgentFolder folder;
    folder.Write("Tavo.settings.json", "{");
    const auto open = [&folder](const char* name, int mode)
    { fs::permissions(folder.Path() / name, fs::perms(mode)); };
    folder.Write("Logs/Tavo.log", "");
    open("Logs", 0777);
    open("Logs/Tavo.log", 0222);
    const std::string trouble = "Tavo: " + (folder.Path() / "Tavo.settings.json").string() +
                                " cannot be understood and cannot be moved away: defaults hold\n";
    const auto start = std::chrono::steady_clock::now();
    const AgentOutcome outcome = folder.Run({"init", "get:LogLevel", "set:LogLevel:1"}, true);
    EXPECT_EQ(outcome.answers, "2\nfalse\n");
    EXPECT_EQ(outcome.errors, trouble);
    // Far below the time that a process waits for another one's lock.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
    EXPECT_EQ(folder.Settings(), "{");
    // Where the lock can be had.
    folder.Write("Tavo.settings.lock", "");
    open("Tavo.settings.lock", 0666);
    folder.Run({"set:LogLevel:1"}, true);
    open("Tavo.settings.json", 0);
    EXPECT_EQ(folder.Run({"init", "get:LogLevel", "set:LogLevel:1"}, true).answers, "2\nfalse\n");
    for (const char* text :
         {"Tavo.settings.json cannot be understood and cannot be moved away: defaults hold\n",
          "LogLevel is not changed: Tavo.settings.json cannot be understood\n",
          "Tavo.settings.json cannot be read: defaults hold\n",
          "LogLevel is not changed: Tavo.settings.json cannot be read\n"})
        EXPECT_THAT(folder.Log(), HasSubstr(text));
}

TEST(Settings, ThatAWriteWouldMakeTooLargeToReadAreRefused)
{
    const AgentFolder folder;
    const std::string before = "{\"a\": [1" + Repeated(",1", 200'000) + "]}";
    folder.Write("Tavo.settings.json", before);
    EXPECT_EQ(folder.Answers({"set:LogFileCount:7", "get:LogFileCount"}), "false\n5\n");
    EXPECT_EQ(folder.Settings().size(), before.size());
    EXPECT_THAT(
        folder.Log(),
        HasSubstr("LogFileCount is not changed: Tavo.settings.json would become larger than 1048576 bytes"));
    folder.Write("Tavo.settings.json", R"({"LogFileCount": 7, "a": ")" + std::string(1'048'576, 'x') + "\"}");
    EXPECT_EQ(folder.Answers({"get:LogFileCount"}), "5\n");
    EXPECT_THAT(folder.Log(), HasSubstr("Tavo.settings.json cannot be read: defaults hold\n"));
}

TEST(Settings, OfProcessesThatWriteAtOnceAreAllStored)
{
    const AgentFolder folder;
    folder.Write("Tavo.settings.json", "{\"note\": \"kept\"}");
    // In each of the rounds no value of another process may get lost.
    for (int round = 0; round < 9; ++round)
    {
        std::string all;
        {
            std::vector<std::jthread> starters;
            for (const auto& [name, fallback, most] : kSettings)
            {
                const std::string value = std::to_string(most == 1 || most == 2 ? round % 2 : 10 + round);
                starters.emplace_back([&folder, step = "set:" + name + ":" + value]
                                      { EXPECT_EQ(folder.Answers({step}), "true\n"); });
                all += value + "\n";
            }
        }
        EXPECT_EQ(AllOf(folder), all) << round;
    }
    EXPECT_THAT(folder.Settings(), HasSubstr("\"note\": \"kept\""));
    EXPECT_THAT(folder.Names("Tavo.settings"), ElementsAre("Tavo.settings.json"));
}

// An editor that writes in place: for a moment the file is empty.
TEST(Settings, ThatAreJustBeingWrittenAreNotSetAside)
{
    for (const std::string step : {"get:LogLevel", "set:LogFileCount:7"})
    {
        const AgentFolder folder;
        folder.Write("Tavo.settings.json", "");
        std::thread editor(
            [&folder]
            {
                for (int turn = 1; turn <= 15; ++turn)
                {
                    std::this_thread::sleep_for(std::chrono::milliseconds(100));
                    folder.Write("Tavo.settings.json", turn < 15 ? "{" : R"({"LogLevel": 1})");
                }
            });
        const AgentOutcome outcome = folder.Run({step, "get:LogLevel"});
        editor.join();
        EXPECT_EQ(outcome.answers, step.starts_with("get") ? "1\n1\n" : "true\n1\n");
        EXPECT_EQ(outcome.errors, "");
        EXPECT_THAT(folder.Names("Tavo.settings"), testing::ElementsAre("Tavo.settings.json"));
    }
}
