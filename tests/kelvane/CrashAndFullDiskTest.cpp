// SPDX-License-Identifier: MIT
// What only this system lets a test do: kill a writer at any moment, fill a disk of its own.
#include "foundation/Kelvane.h"
#include "tests/support/AgentFolder.h"
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <random>
#include <thread>

using testing::HasSubstr;

constexpr int kTextLength = 400'000;
constexpr int kKills = 100;

static std::string FileWith(char letter)
{
    return "{\n  \"CustomerServiceText\": \"" + std::string(kTextLength, letter) + "\"\n}\n";
}

TEST(Settings, HoldTheOldOrTheNewTextWheneverTheWriterIsKilled)
{
    const AgentFolder folder;
    folder.Write("Tavo.settings.json", FileWith('A'));
    std::mt19937 random(20261124);
    std::uniform_int_distribution<int> aimed(0, 500); // microseconds, as the next
    std::uniform_int_distribution<int> anywhere(0, 5'000);
    int interrupted = 0;
    for (int kill = 0; kill < kKills; ++kill)
    {
        const std::string before = folder.Settings();
        const ChildProcess writer =
            folder.Start({"forever:CustomerServiceText:" + std::to_string(kTextLength)});
        // The second text is there when the first has been replaced.
        while (folder.Settings() == before)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        // Every other kill is aimed at the next write, however long the disk takes between two.
        const bool isAimed = kill % 2 != 0;
        while (isAimed && !fs::exists(folder.Path() / "Tavo.settings.json.new"))
            std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::microseconds((isAimed ? aimed : anywhere)(random)));
        writer.Kill();
        const std::string after = folder.Settings();
        ASSERT_TRUE(after == FileWith('A') || after == FileWith('B'))
            << kill << ": " << after.size() << " bytes";
        interrupted += fs::exists(folder.Path() / "Tavo.settings.json.new") ? 1 : 0;
    }
    EXPECT_GT(interrupted, kKills / 20) << "hardly any kill met a writer at work";
    // A killed writer neither holds the lock nor leaves anything in the way.
    EXPECT_EQ(folder.Answers({"set:LogLevel:1", "get:LogLevel"}), "true\n1\n");
    EXPECT_THAT(folder.Names("Tavo.settings"), testing::ElementsAre("Tavo.settings.json"));
}

// The agent on a disk of 64 KB, which only this test's processes see.
TEST(Settings, AndLogOnAFullDiskKeepWhatTheyHad)
{
    const AgentFolder folder;
    folder.Write("script", R"(set -e
mount -t tmpfs -o size=64k tmpfs disk
touch disk/agent && mount --bind "$1" disk/agent
run() { disk/agent answers "$@"; cat answers; }
run init set:CustomerServiceText:old "log:2:before"
cp disk/Tavo.settings.json before.json
head -c 100000 /dev/zero >disk/filler 2>/dev/null || true
run init set:CustomerServiceText:new reset:CustomerServiceText get:CustomerServiceText many:x:100 \
  "shell:cmp before.json disk/Tavo.settings.json && ls disk >names && rm disk/filler"
cat answers.errors names
run "log:2:mended"
run set:CustomerServiceText:new "log:2:after"
cat disk/Logs/Tavo.log >log
umount disk/agent && umount disk
)");
    fs::create_directory(folder.Path() / "disk");
    const std::string command = "cd '" + folder.Path().string() + "' && unshare --mount sh script '" +
                                folder.Agent().string() + "' >output 2>errors";
    if (std::system("unshare --mount true 2>/dev/null") != 0)
        GTEST_SKIP() << "needs root for a mount of its own";
    ASSERT_EQ(std::system(command.c_str()), 0) << folder.Read("output") << folder.Read("errors");
    EXPECT_THAT(folder.Read("output"),
                testing::MatchesRegex(
                    "true\nfalse\nold\nTavo: the log in [^\n]*cannot be "
                    "written: No space left on device\nLogs\nTavo.settings.json\nagent\nfiller\ntrue\n"));
    // A line that had no room is torn; the next one, of another process, is a line of its own.
    const std::string log = folder.Read("log");
    for (const std::string text : {"before", "mended", "after"})
        EXPECT_THAT(log, testing::ContainsRegex("(^|\n)[^\n]{29} \\[[^\n]*\\] progress: " + text + "\n"));
    EXPECT_THAT(log, HasSubstr("CustomerServiceText is not changed: Tavo.settings.json cannot be written: No "
                               "space left on device\n"));
}

// The changes of an account that may read the folder and no more.
TEST(Settings, AreChangedWhileAnotherAccountLocksTheirFolder)
{
    const AgentFolder folder;
    fs::permissions(folder.Path(), fs::perms(0755));
    const ChildProcess other(kAsNobody + L"flock \"" + folder.Path().wstring() + L"\" sleep 20");
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    const std::string openFiles = "shell:cd '" + folder.Path().string() + "' && ls /proc/$PPID/fd >";
    EXPECT_EQ(folder.Answers({openFiles + "before", "set:LogFileCount:7", "log:2:x", openFiles + "after"}),
              "true\n");
    EXPECT_EQ(folder.Read("after"), folder.Read("before"));
    EXPECT_NE(folder.Read("after"), "");
    other.Kill();
}

TEST(Settings, ThatAreBrokenAreToldWhileTheirLockIsHeld)
{
    const AgentFolder folder;
    folder.Write("Tavo.settings.json", "{");
    const ChildProcess other(L"/usr/bin/flock \"" + folder.Path().wstring() +
                             L"/Tavo.settings.lock\" sleep 20");
    while (folder.Names("Tavo.settings").size() < 2)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(folder.Answers({"init", "get:LogLevel"}), "2\n");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8))
        << "a moment for each setting";
    EXPECT_EQ(folder.Settings(), "{") << "its writer may be mending it";
    EXPECT_THAT(folder.Log(), HasSubstr("cannot be understood and cannot be moved away"));
    other.Kill();
}

// The text of a refusal is the system's own where there is one.
TEST(Settings, WhoseLockCannotBeHadSayWhy)
{
    const AgentFolder folder;
    fs::create_directory(folder.Path() / "Tavo.settings.lock");
    folder.Run({"set:LogFileCount:7"});
    EXPECT_THAT(folder.Log(),
                HasSubstr("LogFileCount is not changed: Tavo.settings.lock cannot be had: Is a directory\n"));
    fs::create_directory(folder.Path() / "Tavo.settings.json");
    EXPECT_EQ(folder.Run({"get:LogLevel"}).answers, "2\n");
    EXPECT_THAT(folder.Log(), HasSubstr("Tavo.settings.json cannot be read: defaults hold\n"));
}

TEST(Log, TakesItsTurnWhileAnotherAccountKeepsTheLock)
{
    const AgentFolder folder;
    folder.Write("Tavo.settings.json", R"({"LogSizeLimitKB": 1})");
    folder.Write("Logs/Tavo.log", std::string(2000, 'x'));
    const fs::path lock = folder.Path() / "Logs/Tavo.log.lock";
    folder.Write("Logs/Tavo.log.lock", "");
    if (chown(lock.c_str(), 65534, 65534) != 0)
        GTEST_SKIP() << "only root may give files away";
    fs::permissions(folder.Path() / "Logs", fs::perms(0755));
    fs::permissions(folder.Path(), fs::perms(0755));
    const ChildProcess other(kAsNobody + L"flock \"" + lock.wstring() + L"\" sleep 20");
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    const auto start = std::chrono::steady_clock::now();
    const std::string before = Said("date '+%F %T'");
    folder.Run({"log:2:new"});
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100)) << "its turn";
    EXPECT_EQ(folder.Read("Logs/Tavo.1.log").size(), 2000u);
    EXPECT_THAT(folder.Log(), HasSubstr("new"));
    EXPECT_LT(before, folder.Log());
    EXPECT_LT(folder.Log(), Said("date '+%F %T.~'"));
    EXPECT_THAT(folder.Names("Tavo.log"), testing::ElementsAre("Tavo.log"));
    other.Kill();
}

// An installed program folder is read-only, and a link in it leads to the logs.
TEST(Log, BehindALinkIsMadeAnewWhereItLeads)
{
    const AgentFolder folder;
    fs::create_symlink("var/onward", folder.Path() / "Logs");
    fs::create_directory(folder.Path() / "var");
    fs::create_symlink("../else/where", folder.Path() / "var/onward");
    fs::permissions(folder.Path(), fs::perms(0777));
    const AgentOutcome outcome = folder.Run(
        {"log:2:one", "shell:rm -r '" + (folder.Path() / "else").string() + "'", "log:2:two"}, true);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(folder.Read("else/where/Tavo.log"), HasSubstr("two"));

    // But not where another account's link leads.
    fs::remove_all(folder.Path() / "else");
    if (lchown((folder.Path() / "var/onward").c_str(), 1, 1) != 0)
        GTEST_SKIP() << "only root may give links away";
    EXPECT_THAT(folder.Run({"log:2:three"}).errors,
                HasSubstr("Tavo: the log in " + (folder.Path() / "Logs/").string() +
                          " cannot be written: another account has put a link there\n"));
    EXPECT_FALSE(fs::exists(folder.Path() / "else"));
}

TEST(Settings, KeepTheirOwnerAndMode)
{
    const AgentFolder folder;
    folder.Write("Tavo.settings.json", "{}");
    const std::string file = (folder.Path() / "Tavo.settings.json").string();
    if (chown(file.c_str(), 65534, 65533) != 0)
        GTEST_SKIP() << "only root may give files away";
    fs::permissions(file, fs::perms(04640));
    const std::string edit = "shell:" + Encoded("echo '{\"LogFileCount\": 3}' >'" + file + "'");
    EXPECT_EQ(folder.Answers(
                  {"set:LogFileCount:7", edit, "get:LogFileCount", "reset:LogFileCount", "get:LogFileCount"}),
              "true\n7\n3\n");
    EXPECT_EQ(Said("stat -c '%u %g %a' '" + file + "'"), "65534 65533 640\n")
        << "but no rights to run as its owner";
}

TEST(Settings, AndLogsThatAreNewLetOthersInNoFurtherThanMeant)
{
    const AgentFolder folder;
    const fs::path deep = folder.Path() / std::string(200, 'x') / std::string(200, 'x');
    fs::create_directories(deep);
    fs::copy(folder.Agent(), deep);
    const std::string there = "cd '" + deep.string() + "' && umask 0 && ";
    Said(there + "./" + folder.Agent().filename().string() + " out set:LogDirectory:a/b init log:2:x");
    EXPECT_EQ(Said(there + "stat -c %a Tavo.settings.json a/b a/b/Tavo.log"), "644\n750\n640\n");
}

TEST(TextFiles, AreNotWrittenThroughALinkThatAnotherAccountPlanted)
{
    const AgentFolder folder;
    folder.Write("victim", "untouched");
    const std::string name = "list\x80z\xFF.\xE9.txt"; // from a disk of another system
    for (const char* ending : {"", ".new"})
        fs::create_symlink(folder.Path() / "victim", folder.Path() / (name + ending));
    const fs::path list = folder.Path() / name;
    EXPECT_TRUE(WriteTextFileAsUTF8(ZTString(list.c_str()), L"names", true, true, false, false));
    EXPECT_EQ(folder.Read("victim"), "untouched");
    EXPECT_EQ(folder.Read(name), "names");
    EXPECT_FALSE(fs::is_symlink(list));
    EXPECT_EQ(fs::status(list).permissions(), fs::perms(0600));
    EXPECT_THAT(folder.Names("list"), testing::ElementsAre(name));
}

TEST(Threads, AreNamedForTheKernelInWholeCharacters)
{
    std::jthread(
        []
        {
            ThreadInit(L"14 characters \u00FC");
            EXPECT_EQ(ReadFile("/proc/thread-self/comm"), "14 characters \n");
        });
}

// An installed program folder is read-only, and a link in it leads to the settings.
TEST(Settings, BehindALinkAreWrittenWhereItLeads)
{
    const std::tuple<const char*, const char*, const char*, bool> rows[] = {
        {"a file that is there", "var/stored.json", "var/stored.json", true},
        {"none yet: the link is broken until the first write", "var/stored.json", "var/stored.json", false},
        {"from one link to another", "var/onward", "var/deep/stored.json", false},
        {"up and down again", "var/../var/deep/stored.json", "var/deep/stored.json", true},
    };
    for (const auto& [why, link, end, exists] : rows)
    {
        SCOPED_TRACE(why);
        const AgentFolder folder;
        fs::create_directories(folder.Path() / "var/deep");
        fs::create_symlink("deep/stored.json", folder.Path() / "var/onward");
        fs::create_symlink(link, folder.Path() / "Tavo.settings.json");
        if (exists)
            folder.Write(end, "{\"LogFileCount\": 3}\n");
        EXPECT_EQ(folder.Answers({"get:LogFileCount", "set:LogFileCount:9"}),
                  exists ? "3\ntrue\n" : "5\ntrue\n");
        EXPECT_TRUE(fs::is_symlink(folder.Path() / "Tavo.settings.json"));
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder.Path() / end)));
        EXPECT_EQ(folder.Read(end), "{\n  \"LogFileCount\": 9\n}\n");

        // What cannot be understood is set aside beside its own place, which is left free.
        folder.Write(end, "broken");
        EXPECT_EQ(folder.Answers({"get:LogFileCount"}), "5\n");
        const fs::path aside = (folder.Path() / end).parent_path() / "Tavo.settings.broken-1.json";
        EXPECT_EQ(folder.Read(aside), "broken");
        EXPECT_TRUE(fs::is_symlink(folder.Path() / "Tavo.settings.json"));
    }
}
