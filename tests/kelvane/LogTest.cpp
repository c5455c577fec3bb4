// SPDX-License-Identifier: MIT
#include "tests/support/AgentFolder.h"
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>

#include <regex>
#include <set>
#include <thread>

using namespace testing;

// The line less its time, process and thread.
static std::string Rest(const std::string& line)
{
    return line.substr(line.find("] ") + 2);
}

static std::vector<std::string> Texts(const AgentFolder& folder)
{
    std::vector<std::string> texts = Lines(folder.Log());
    for (std::string& line : texts)
        line = Rest(line);
    return texts;
}

TEST(Log, ALineTellsTimeZoneProcessThreadSeverityAndText)
{
    const AgentFolder folder;
    folder.Run({"init", "log:2:one", "thread:Worker%207:two", "log:1:three"});
    const std::string start =
        R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \+0530 \[\d+:\d+ )"; // the zone that these tests run in
    const std::regex lines(start + "Main\\] progress: one\n" + start + "Worker 7\\] progress: two\n" + start +
                           "Main\\] failure: three\n");
    EXPECT_TRUE(std::regex_match(folder.Log(), lines)) << folder.Log();
}

TEST(Log, ATextIsOneLineWhateverItHolds)
{
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"a\r\nb\tc", R"(a\r\nb\tc)", "line breaks and tabs"},
        {"\x1B[2J\x07\x7F", R"(\u001B[2J\u0007\u007F)", "what a terminal would obey"},
        {"\xC2\x85|\xC2\x9B|\xC2\xA0", "\\u0085|\\u009B|\xC2\xA0",
         "control characters beyond ASCII, and the first that is not one"},
        {"C:\\new", "C:\\new", "paths stay readable"},
        {"ü😀", "ü😀", "letters and astral characters"},
    };
    for (const auto& [text, logged, why] : rows)
    {
        const AgentFolder folder;
        folder.Run({"log:2:" + Encoded(text)});
        EXPECT_THAT(Texts(folder), ElementsAre(std::string("progress: ") + logged)) << why;
    }
}

TEST(Log, ServesStaticObjectsBeforeMainAndAfterIt)
{
    const AgentFolder folder;
    EXPECT_EQ(folder.Run({"init", "statics", "log:2:middle"}).exitCode, 0u);
    EXPECT_THAT(Texts(folder), ElementsAre("progress: first", "progress: middle", "progress: last"));
}

TEST(Log, WritesWhatTheLevelAllows)
{
    const std::vector<std::string> logged[] = {{}, {"failure: f"}, {"failure: f", "progress: p"}};
    for (int level = 0; level < 3; ++level)
    {
        const AgentFolder folder;
        folder.Run({"set:LogLevel:" + std::to_string(level), "log:1:f", "log:2:p"});
        EXPECT_EQ(Texts(folder), logged[level]) << level;
    }
}

TEST(Log, LiesWhereTheSettingSaysFromTheNextStartOn)
{
    const AgentFolder folder;
    folder.Run({"init", "set:LogDirectory:deep/er", "log:2:before"});
    EXPECT_THAT(folder.Log(), HasSubstr("before"));
    folder.Run({"init", "log:2:after"});
    EXPECT_THAT(folder.Read("deep/er/Tavo.log"), HasSubstr("after"));

    const fs::path other = folder.Path() / "other place";
    // From the root of the drive, where there are drives.
    const fs::path rooted = other.root_directory() / other.relative_path();
    folder.Run({"set:LogDirectory:" + Encoded((rooted / "").string())});
    EXPECT_EQ(folder.Answers({"init", "log:2:there", "directory"}), (other / "").string() + "\n");
    EXPECT_THAT(folder.Read("other place/Tavo.log"), HasSubstr("there"));

    if (RunsOnWindows())
    {
        folder.Run({R"(set:LogDirectory:\\server\share\logs)"});
        EXPECT_EQ(folder.Answers({"directory"}), "\\\\server\\share\\logs\\\n") << "on another machine";
    }

    folder.Run({"set:LogDirectory:"});
    EXPECT_EQ(folder.Answers({"init", "directory"}), (folder.Path() / "Logs" / "").string() + "\n")
        << "nothing is no place";
}

TEST(Log, KeepsAsManyOlderFilesAsTheSettingSays)
{
    const AgentFolder folder;
    folder.Run({"set:LogSizeLimitKB:1", "set:LogFileCount:3", "many:a:100"});
    EXPECT_THAT(folder.Names("Tavo."),
                ElementsAre("Tavo.1.log", "Tavo.2.log", "Tavo.3.log", "Tavo.log", "Tavo.settings.json"));
    for (const char* name : {"Tavo.log", "Tavo.1.log", "Tavo.2.log", "Tavo.3.log"})
        EXPECT_LE(folder.Read(std::string("Logs/") + name).size(), 1024u) << name;
    EXPECT_THAT(folder.Log(), HasSubstr("<a.99.a>"));

    folder.Run({"set:LogFileCount:1", "many:b:30"});
    EXPECT_THAT(folder.Names("Tavo."), ElementsAre("Tavo.1.log", "Tavo.log", "Tavo.settings.json"));
    folder.Write("Logs/Tavo.log", std::string(65'500, 'x'));
    folder.Run({"set:LogSizeLimitKB:64", "log:2:y"});
    EXPECT_EQ(folder.Read("Logs/Tavo.1.log").size(), 65'500u) << "a line has more than 36 bytes";
    folder.Write("Logs/Tavo.log", "");
    folder.Run({"log:2:" + std::string(65'536, 'y')});
    EXPECT_EQ(folder.Read("Logs/Tavo.1.log").size(), 65'500u) << "an empty file is not moved";
    folder.Run({"set:LogFileCount:0", "set:LogSizeLimitKB:1", "many:c:30"});
    EXPECT_THAT(folder.Names("Tavo."), ElementsAre("Tavo.log", "Tavo.settings.json"));
    EXPECT_LE(folder.Log().size(), 1024u);
    folder.Run({"set:LogSizeLimitKB:0", "many:d:200"});
    EXPECT_GT(folder.Log().size(), 10'000u);
}

TEST(Log, LosesAndMixesNoLineOfProcessesThatWriteAndRotateAtOnce)
{
    if (RunsOnWindows())
        GTEST_SKIP()
            << "Wine looks for the end of a file and then writes there, where Windows appends in one step";
    constexpr int kProcesses = 8;
    constexpr int kLines = 300;
    const AgentFolder folder;
    folder.Run({"set:LogSizeLimitKB:8", "set:LogFileCount:99"});
    {
        std::vector<std::jthread> starters;
        for (int process = 0; process < kProcesses; ++process)
            starters.emplace_back(
                [&folder, process]
                { folder.Run({"many:" + std::to_string(process) + ":" + std::to_string(kLines)}); });
    }
    std::set<std::string> seen;
    std::size_t lines = 0;
    const std::regex whole(R"(.{29} \[\d+:\d+\] progress: <(\d+)\.(\d+)\.\1>)");
    std::vector<std::string> names = folder.Names("Tavo.");
    std::erase(names, "Tavo.settings.json");
    for (const std::string& name : names)
    {
        const std::string text = folder.Read("Logs/" + name);
        EXPECT_TRUE(name == "Tavo.log" || text.size() > 8 * 1024 - 100)
            << name << " was full when it was moved";
        for (const std::string& line : Lines(text))
        {
            EXPECT_TRUE(std::regex_match(line, whole)) << name << ": " << line;
            seen.insert(Rest(line));
            ++lines;
        }
    }
    // How often depends on the scheduler, since nobody waits for the one who rotates; that he does, does not.
    EXPECT_GT(names.size(), 1u);
    EXPECT_EQ(lines, static_cast<std::size_t>(kProcesses * kLines));
    EXPECT_EQ(seen.size(), lines) << "each once";
}

TEST(Log, IsWrittenThroughNoOtherNameWhichItSaysOnceAndStopsNothing)
{
    using Plant = void (*)(const fs::path& victim, const fs::path& log);
    const std::pair<Plant, std::string> planted[] = {
        {[](const fs::path& victim, const fs::path& log) { fs::create_hard_link(victim, log); },
         "it has a second name"},
        {[](const fs::path&, const fs::path& log) { fs::create_directory(log); },
         RunsOnWindows() ? "5: Access denied." : "Is a directory"},
        {[](const fs::path&, const fs::path& log)
         {
             fs::remove(log.parent_path());
             WriteFile(log.parent_path(), "in the folder's place");
         },
         "Not a directory"},
        {[](const fs::path& victim, const fs::path& log) { fs::create_symlink(victim, log); },
         "it is a link"},
        {[](const fs::path&, const fs::path& log)
         { EXPECT_EQ(std::system(("mkfifo '" + log.string() + "'").c_str()), 0); },
         "it is not a plain file"}};
    for (const auto& [plant, why] : planted)
    {
        if (RunsOnWindows() && why.starts_with("it is "))
            continue; // Wine makes no links of this kind, nor pipes
        const AgentFolder folder;
        fs::create_directory(folder.Path() / "Logs");
        folder.Write("victim", "untouched");
        plant(folder.Path() / "victim", folder.Path() / "Logs" / "Tavo.log");
        const AgentOutcome outcome = folder.Run({"log:2:x", "log:1:y", "shutdown:z", "get:LogLevel"});
        EXPECT_EQ(outcome.exitCode, 0u);
        EXPECT_EQ(folder.Read("victim"), "untouched");
        EXPECT_EQ(outcome.answers, "2\n");
        EXPECT_EQ(outcome.errors, "Tavo: the log in " + (folder.Path() / "Logs" / "").string() +
                                      " cannot be written: " + why + "\n");
    }
}
