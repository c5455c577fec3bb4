// SPDX-License-Identifier: MIT
// From the start to the archive on a real server.
#include "tests/shipment/ShipmentRun.h"

#include <cstdlib>
#include <ctime>

using namespace testing;

constexpr int kFolders = 50;
constexpr int kFilesInEach = 40;

// Names that file systems, archivers, list files and command lines could stumble over.
const std::vector<std::string> kOddNames = {
    "two  blanks.log", "it's.log",        "mid\"dle.log", "кириллица.log",
    "日志.log",        "😀.log",           "..\\x",        "CON",
    "aux.txt",         "-switch.log",     "@list.log",    "!bang.log",
    "name.log;type=a", "a:b*c?<d>|e.log", "100%.log",     std::string(200, 'x'),
};

// What is fresh in it, and the names of what is old as the console lists them.
static std::pair<Tree, std::set<std::string>> MakeTree(const fs::path& root)
{
    Tree fresh;
    std::set<std::string> listed;
    const auto makeOld = [&](const fs::path& path)
    {
        WriteFile(root / path, "old");
        MakeOld(root / path);
        listed.insert(path.filename().string());
    };
    for (int f = 0; f < kFolders; ++f)
        for (int n = 0; n < kFilesInEach; ++n)
        {
            const std::string path =
                "folder " + std::to_string(f) + "/" + std::to_string(f) + "-" + std::to_string(n) + ".log";
            if (n % 4 == 0)
                makeOld(path);
            else
                fresh[path] = "content of " + path;
        }
    for (const std::string& name : kOddNames)
    {
        makeOld("old/" + name);
        fresh["fresh/new " + name] = name;
    }
    // A name counts wherever it lies, and once.
    makeOld("old/Twice.log");
    makeOld("folder 1/Twice.log");
    makeOld("d/one letter.log");
    WriteFile(root / "folder 2/Twice.log", "fresh");
    // No UTF-8, which the list is, and a character that an archiver refuses there.
    makeOld("gr\xFC\xDF-ä.log");
    listed.erase("gr\xFC\xDF-ä.log");
    listed.erase("😀.log");
    listed.insert({"gr?\?-ä.log", "??.log"});
    makeOld("over five days.log");
    MakeOld(root / "over five days.log", std::chrono::hours(121));
    fresh["under five days.log"] = "fresh";
    for (const auto& [path, content] : fresh)
        WriteFile(root / path, content);
    MakeOld(root / "under five days.log", std::chrono::hours(119));
    MakeOld(root / "old"); // a folder's age means nothing
    return {fresh, listed};
}

// As a terminal without a locale shows it.
static std::string InAscii(const std::string& text)
{
    std::string shown;
    for (const char c : text)
        if ((c & 0xC0) != 0x80)
            shown += (c & 0x80) == 0 ? std::string(1, c) : (c & 0xF8) == 0xF0 ? "??" : "?";
    return shown;
}

// The name and the content of what the button brings.
static void ExpectShippedByButton(const RealFtpServer& server)
{
    const std::time_t now = std::time(nullptr);
    const std::tm day = *std::localtime(&now);
    char name[64];
    std::snprintf(name, sizeof name, "Logs-%d-%d-%d.zip", day.tm_year + 1900, day.tm_mon + 1, day.tm_mday);
    EXPECT_THAT(
        Unpack(server.Directory() / name),
        ElementsAre(Pair("Tavo.log", _), Pair("fresh.log", "fresh"), Pair("uploadIgnoreList.txt", "")));
}

using WholeShipment = ShipmentTest;

TEST_F(WholeShipment, BringsEveryFreshFileAndNothingElse)
{
    const auto [fresh, listed] = MakeTree(Logs());
    const fs::path kept = folder.Path() / "kept.zip";
    ReplaceArchiver("\"$REAL\" \"$@\"; result=$?; cp .._*.zip '" + kept.string() + "'; exit $result");
    const RealFtpServer server(kFtpUser, kFtpPassword);
    // No locale: names are UTF-8 all the same. What no file name may hold is replaced.
    const std::string wanted = "x it's 100% #1;type=a Л日😀 x";
    const std::string name = ".._" + wanted + ".zip";
    const std::string shown = InAscii(name);
    ProgramStart start = Unattended("\t\r\n ..\\" + wanted + " \r\n\t");
    start.environment = {{"LANG", "C"}, {"LC_ALL", "C"}};
    const ProgramOutcome outcome = Ship(start);

    // The archive that arrived is the one that was packed.
    const std::string packed = ReadFile(kept);
    ASSERT_GT(packed.size(), 10000U) << outcome.console;
    ASSERT_TRUE(packed == ReadFile(server.Directory() / name));
    Tree found = Unpack(kept);
    EXPECT_EQ(1U, found.erase("uploadIgnoreList.txt")); // in the tree that is packed, and nothing excludes it
    EXPECT_EQ(1U, found.erase("Tavo.log"));
    EXPECT_EQ(fresh, found);

    const std::string logs = Logs().string() + "/";
    std::vector<std::string> lines = ShipmentLines(outcome);
    // libcurl from 8.12 on takes its leave without a word to us.
    std::erase(lines, "QUIT");
    std::erase(lines, "221 Goodbye.");
    const std::string login = "530 Please login with USER and PASS.";
    std::vector<testing::Matcher<std::string>> expected = {
        "Sending logs in: " + logs, "Sending logs to support as: " + logs + shown, "Ignoring:"};
    std::transform(listed.begin(), listed.end(), std::back_inserter(expected), InAscii);
    expected.insert(expected.end(),
                    {"Starting compression via: [\"" + (folder.Path() / "7za.exe").string() +
                         "\" a -r -ssw -x@uploadIgnoreList.txt \"" + logs + shown + "\" *]",
                     "Please wait...",
                     "Compression finished.  Exit Code: 0",
                     "Beginning upload",
                     "Connecting to " TAVO_SUPPORT_HOST ":21",
                     StartsWith("220 (vsFTPd 3."),
                     "Connected to " TAVO_SUPPORT_HOST,
                     "AUTH TLS",
                     login,
                     "AUTH SSL",
                     login,
                     "The server offers no encryption: password and file can be read on their way",
                     "USER zt-ftp",
                     "331 Please specify the password.",
                     "PASS ****",
                     "230 Login successful.",
                     "Logged in as zt-ftp",
                     "PWD",
                     "257 \"" + server.Directory().string() + "\" is the current directory",
                     "OPTS UTF8 ON",
                     "200 Always in UTF8 mode.",
                     "EPSV",
                     StartsWith("229 Entering Extended Passive Mode (|||"),
                     "TYPE I",
                     "200 Switching to Binary mode.",
                     "STOR " + shown,
                     "150 Ok to send data.",
                     "Sending " + shown,
                     "226 Transfer complete.",
                     "The server has received " + shown,
                     "Disconnected",
                     kSent});
    EXPECT_THAT(lines, ElementsAreArray(expected));
    EXPECT_NE(std::string::npos,
              outcome.console.find("FTP_LOG: 100% done, " + std::to_string(packed.size()) + " sent"));
}

TEST_F(WholeShipment, IsStartedByTheButtonInTheTerminalAndUsesARealServersTls)
{
    WriteFile(Logs() / "fresh.log", "fresh");
    const RealFtpServer server(kFtpUser, kFtpPassword, kTlsSettings);
    const ProgramOutcome outcome = Ship({.input = {"FTP Logs to Support", "Close"}});
    EXPECT_THAT(outcome.console, HasSubstr(" a -r -ssw  \""));
    EXPECT_THAT(outcome.console, HasSubstr("The connection is encrypted"));
    EXPECT_THAT(Verdicts(outcome), ElementsAre("Compression finished.  Exit Code: 0", kSent));
    ExpectShippedByButton(server);
}

// On a screen, where a shell's commands are the user of the program $program; gives the program's exit code.
static int OnAScreen(const fs::path& folder, const std::string& arguments, const std::string& user)
{
    // In this network a server finds every display number free: its sockets would take the place of others'.
    WriteFile(folder / "user", R"sh(
        cd "$(dirname "$0")"
        mkdir -p /tmp/.X11-unix && mount -t tmpfs none /tmp/.X11-unix
        rm -f display; Xvfb -displayfd 3 -screen 0 1000x800x24 3>display 2>/dev/null & screen=$!
        until [ -s display ]; do sleep 0.1; done
        export DISPLAY=:$(cat display) ASAN_OPTIONS=detect_leaks=0
        timeout 60 ./Tavo )sh" + arguments +
                                   " </dev/null & program=$!\n" + user + R"sh(
        wait $program; result=$?
        kill $screen
        exit $result)sh");
    return WEXITSTATUS(std::system(("unshare -m sh '" + (folder / "user").string() + "'").c_str()));
}

TEST_F(WholeShipment, IsStartedByTheButtonOnAScreenAndOutlivesTheEscapeKey)
{
    if (std::string(TAVO_TEST_BUILD) == "tsan" || !fs::exists(folder.Path() / "libtavoqt.so"))
        GTEST_SKIP() << "no display for screens, or no sight of the locks inside its libraries";
    WriteFile(Logs() / "fresh.log", "fresh");
    const RealFtpServer server(kFtpUser, kFtpPassword);
    ProgramOutcome outcome;
    outcome.exitCode = OnAScreen(folder.Path(), "", R"sh(
        timeout 30 xdotool search --sync --onlyvisible --name '^ZT Diagnostics$' windowfocus --sync key Tab Tab Tab space
        sleep 1; xdotool key Escape)sh");
    ExpectOrderlyEnd(outcome);
    ExpectShippedByButton(server);

    ReplaceArchiver("echo half > case.zip; echo $$ > \"${0%/*}/archiver\"; exec sleep 60");
    const std::string loseTheScreen = "until [ -s archiver ]; do sleep 0.1; done; kill -9 $screen";
    EXPECT_EQ(OnAScreen(folder.Path(), "-FTP_LOG=case", loseTheScreen), 1);
    outcome.exitCode = 0;
    ExpectOrderlyEnd(outcome);
    EXPECT_THAT(folder.Log(), testing::HasSubstr(": ended by a library: the display is gone\n"));
    EXPECT_TRUE(EndsSoon(folder.Read("archiver")));
}
