// SPDX-License-Identifier: MIT
// What can go wrong before the upload: the archiver, and the directory that it packs.
#include "tests/shipment/ShipmentRun.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <sstream>
#include <thread>

using namespace testing;

using Archiver = ShipmentTest;

TEST_F(Archiver, IsFollowedByTheUploadWhateverItsCode)
{
    const RealFtpServer server(kFtpUser, kFtpPassword);
    ReplaceArchiver("[ -e \"$REAL.dies\" ] && kill -9 $$; \"$REAL\" \"$@\"; exit 255");
    EXPECT_THAT(Verdicts(Ship("case")), ElementsAre("Compression finished.  Exit Code: 255", kSent));
    EXPECT_TRUE(fs::remove(server.Directory() / "case.zip"));
    WriteFile(folder.Path() / "real.dies", "");
    EXPECT_THAT(Verdicts(Ship("case")), ElementsAreArray(NothingPacked("137")));
    EXPECT_FALSE(fs::exists(server.Directory() / "case.zip"));
}

TEST_F(Archiver, ThatCannotBeStartedIsNamedWithTheReason)
{
    const fs::path archiver = folder.Path() / "7za.exe";
    const auto expectTold = [&](const std::string& reason)
    {
        EXPECT_THAT(Verdicts(Ship("case")),
                    ElementsAre(MatchesRegex("Failed to launch before FTP: \\[\"" + archiver.string() +
                                             "\" a .*\\*\\]  Err=" + reason)));
    };
    fs::remove(archiver);
    expectTold("2: The system cannot find the file specified\\.");
    WriteFile(archiver, "no program");
    expectTold("5: Access is denied\\.");
    fs::permissions(archiver, fs::perms(0755));
    expectTold("193: %1 is not a valid Win32 application\\.");
}

TEST_F(Archiver, ThatTakesTooLongIsLeftAlone)
{
    fs::copy_file(TAVO_TEST_DIR "/impatient", folder.Path() / "Tavo", fs::copy_options::overwrite_existing);
    ReplaceArchiver("sleep 6; echo late > ended");
    const ProgramOutcome outcome = Ship("case");
    EXPECT_THAT(Verdicts(outcome), ElementsAre("Timed out waiting for log compression"));
    EXPECT_THAT(outcome.console, Not(HasSubstr("Beginning upload")));
    // It is not ended: it goes on in the log directory.
    for (int i = 0; i < 100 && ReadFile(Logs() / "ended").empty(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ("late\n", ReadFile(Logs() / "ended"));
}

// No thread is left for the upload once the archiver has ended.
TEST_F(Archiver, IsFollowedByTheReasonWhereTheUploadCannotBeStarted)
{
    ReplaceArchiver("prlimit --pid $PPID --nproc=1");
    GiveAway(Logs(), fs::perms(0755));
    ProgramStart start = Unattended("case", true);
    start.environment = {{"ASAN_OPTIONS", "detect_leaks=0"}}; // which takes a thread, too
    EXPECT_THAT(Verdicts(Ship(start)),
                ElementsAre("Compression finished.  Exit Code: 0",
                            "Log FTP failed with: 8: Not enough memory resources are available to process "
                            "this command."));
}

TEST_F(Archiver, GetsNoInputFileOrNameOfCodeToLoadAndPacksForThisAccountAlone)
{
    ReplaceArchiver("{ pwd; umask; sed -nE 's/(SigBlk|SigIgn):.*(.{7})$/\\1 \\2/p' /proc/self/status; cat; "
                    "env | grep '=/nowhere$'; ls -l /proc/self/fd | sed -n 's/.* "
                    "\\([0-9]*\\) -> /\\1 /p'; } > '" +
                    (folder.Path() / "seen").string() + "' 2>&1");
    ProgramStart start = Unattended("case");
    start.ignoredSignals = {SIGHUP}; // as nohup(1) leaves it to the program, and to what that starts
    std::istringstream names(
        "GCONV_PATH GIO_EXTRA_MODULES GIO_MODULE_DIR GSSNTLMSSP_DEBUG GSS_MECH_CONFIG GTK_MODULES GTK_PATH "
        "KRB5_TRACE LDAPCONF LDAPRC LIBGL_DRIVERS_PATH NTLM_USER_FILE OPENSSL_CONF OPENSSL_CONF_INCLUDE "
        "OPENSSL_ENGINES OPENSSL_MODULES QT_PLUGIN_PATH QT_QPA_GENERIC_PLUGINS QT_QPA_PLATFORM_PLUGIN_PATH "
        "SASL_CONF_PATH SASL_PATH SSLKEYLOGFILE");
    for (std::string name; names >> name;)
        start.environment.emplace_back(name, "/nowhere");
    const int inherited = open("/dev/null", O_RDONLY);
    Ship(start);
    close(inherited);
    const std::string seen = ReadFile(folder.Path() / "seen");
    EXPECT_THAT(seen, StartsWith(Logs().string() + "\n0077\nSigBlk 0000000\nSigIgn 0000001\n"));
    EXPECT_THAT(seen, HasSubstr("0 /dev/null\n"));
    // 0, 1, 2 and the directory that ls reads.
    EXPECT_EQ(8, std::count(seen.begin(), seen.end(), '\n')) << seen;
}

// What ignores SIGCHLD hands that on to its children, and the system then keeps no exit code for them.
TEST_F(Archiver, KeepsItsExitCodeWhereTheParentIgnoresItsChildren)
{
    ReplaceArchiver("exit 8");
    signal(SIGCHLD, SIG_IGN);
    const ProgramOutcome outcome = folder.Run(Unattended("case"));
    signal(SIGCHLD, SIG_DFL);
    EXPECT_THAT(Verdicts(outcome), ElementsAreArray(NothingPacked("8"))) << outcome.console;
}

using LogDirectory = ShipmentTest;

TEST_F(LogDirectory, WithUnreadableFoldersAPipeALoopAndGreatDepthIsShippedAsFarAsCanBe)
{
    const RealFtpServer server(kFtpUser, kFtpPassword);
    WriteFile(Logs() / "fresh.log", "fresh");
    WriteFile(Logs() / "closed" / "secret.log", "secret");
    fs::create_directory_symlink("..", Logs() / "closed" / "parent");
    fs::create_directory_symlink(".", Logs() / "self");
    const TestFolder elsewhere; // whose names are not those of the logs
    elsewhere.Write("another.log", "old");
    MakeOld(elsewhere.Path() / "another.log");
    fs::create_directory_symlink(elsewhere.Path(), Logs() / "link");
    fs::create_symlink("nowhere", Logs() / "to nothing");
    EXPECT_EQ(Said("cd '" + Logs().string() + "' && touch -h -d '30 days ago' link 'to nothing'"), "");
    fs::path deep = Logs();
    for (int level = 0; level < 200; ++level)
        deep /= "level";
    WriteFile(deep / "deep.log", "deep");
    ASSERT_EQ(mkfifo((deep / "pipe").c_str(), 0666), 0); // the archiver would wait for a writer
    WriteFile(deep / "old.log", "old");
    MakeOld(deep / "old.log");
    // As a user to whom rights mean something.
    GiveAway(Logs() / "closed", fs::perms::none);
    const ProgramOutcome outcome = Ship(Unattended("case", true));
    // 1 is the archiver's own word for what it could not read.
    EXPECT_THAT(Verdicts(outcome), ElementsAre("Compression finished.  Exit Code: 1", kSent))
        << outcome.console;
    EXPECT_EQ(outcome.errors, "") << "the archiver's warnings";
    EXPECT_THAT(outcome.console, HasSubstr("Ignoring:\nold.log\npipe\nto nothing\n"));
    // The loop lies in the archive as a link, which older unpackers refuse to make.
    Tree sent = Unpack(server.Directory() / "case.zip", {0, 2});
    EXPECT_EQ("fresh", sent["fresh.log"]);
    EXPECT_EQ("deep", sent[fs::relative(deep / "deep.log", Logs()).string()]);
}

TEST_F(LogDirectory, ThatIsReadOnlyOrMissingGivesAnError)
{
    WriteFile(Logs() / "fresh.log", "fresh");
    GiveAway(Logs(), fs::perms(0555));
    EXPECT_THAT(Verdicts(Ship(Unattended("case", true))), ElementsAreArray(NothingPacked("2")));

    fs::remove_all(Logs());
    fs::permissions(folder.Path(), fs::perms(0555)); // nor can it be made anew
    EXPECT_THAT(Verdicts(Ship(Unattended("case", true))),
                ElementsAre(EndsWith("\" *]  Err=267: The directory name is invalid.")));
}

TEST_F(LogDirectory, MayHaveQuotationMarksAndBackslashesInItsName)
{
    const RealFtpServer server(kFtpUser, kFtpPassword);
    WriteFile(folder.Path() / "Tavo.settings.json", R"({"LogDirectory": "l\\o\\\"g \"s"})");
    WriteFile(folder.Path() / "l\\o\\\"g \"s" / "fresh.log", "fresh");
    EXPECT_THAT(Verdicts(Ship("case")), ElementsAre("Compression finished.  Exit Code: 0", kSent));
    EXPECT_EQ("fresh", Unpack(server.Directory() / "case.zip")["fresh.log"]);
}

// Else the account could have root pack and send any folder.
TEST_F(LogDirectory, BehindALinkOfAnotherAccountIsNotUsed)
{
    const TestFolder theirs;
    const TestFolder ours;
    const fs::path link = theirs.Path() / "link";
    ours.Write("secret", "secret");
    fs::create_directory_symlink(ours.Path(), link);
    ASSERT_EQ(lchown(link.c_str(), 1, 1), 0);
    // Also behind one of our own.
    fs::create_directory_symlink(link, folder.Path() / "own");
    const RealFtpServer server(kFtpUser, kFtpPassword);
    for (const fs::path& directory : {link, folder.Path() / "own"})
    {
        WriteFile(folder.Path() / "Tavo.settings.json", "{\"LogDirectory\": \"" + directory.string() + "\"}");
        EXPECT_THAT(Ship("case").errors, HasSubstr("Tavo: the log directory " + directory.string() +
                                                   " is not used: another account has put a link there\n"));
        const Tree sent = Unpack(server.Directory() / "case.zip");
        EXPECT_TRUE(sent.contains("Tavo.log") && !sent.contains("secret"));
        fs::remove(server.Directory() / "case.zip");
    }
    EXPECT_NE(folder.Log(), "");
}
