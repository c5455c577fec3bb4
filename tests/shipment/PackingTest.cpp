// SPDX-License-Identifier: MIT
// What can go wrong before the upload: the archiver, and the directory that it packs.
#include "tests/shipment/ShipmentRun.h"

#include <gmock/gmock.h>

#include <sys/mount.h>

#include <cstdlib>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

const std::string kSent = "Successfully sent logs to Support";
const std::string kDirect = "Passive upload failed - trying direct";
const std::string kMissing = "1004 Cannot open the local file: No such file or directory";

// Packs, then ends with another code.
std::string PackingAndExiting(const std::string& how)
{
    return "\"$REAL\" \"$@\" >/dev/null; " + how;
}

} // namespace

using Archiver = ShipmentTest;

TEST_F(Archiver, EndsWithAnyCodeAndTheUploadGoesOn)
{
    const RealFtpServer server(kFtpUser, kFtpPassword);
    WriteFile(Logs() / "fresh.log", "fresh");
    ReplaceArchiver("exit 0");
    const struct
    {
        std::string script;
        std::string code;
        bool packs;
    } rows[] = {
        {PackingAndExiting("exit 1"), "1", true},
        {PackingAndExiting("exit 2"), "2", true},
        {PackingAndExiting("exit 255"), "255", true},
        {"exit 8", "8", false},
        {"kill -9 $$", "137", false},
    };
    for (const auto& [script, code, packs] : rows)
    {
        SCOPED_TRACE(script);
        WriteFile(folder.Path() / "7za.exe",
                  "#!/bin/sh\nREAL='" + (folder.Path() / "real").string() + "'\n" + script);
        const ProgramOutcome outcome = Ship("code " + code);
        if (packs)
            EXPECT_THAT(Verdicts(outcome), ElementsAre("Compression finished.  Exit Code: " + code, kSent))
                << outcome.console;
        else
            EXPECT_THAT(Verdicts(outcome),
                        ElementsAre("Compression finished.  Exit Code: " + code, "Error - " + kMissing,
                                    kDirect, "Error - " + kMissing, "Log FTP failed with: " + kMissing))
                << outcome.console;
        EXPECT_EQ(packs, fs::exists(server.Directory() / ("code " + code + ".zip")));
        EXPECT_THAT(Leftovers(), ElementsAre());
    }
}

TEST_F(Archiver, ThatCannotBeStartedIsNamedWithTheReason)
{
    fs::remove(folder.Path() / "7za.exe");
    EXPECT_THAT(Verdicts(Ship("case")),
                ElementsAre(testing::AllOf(
                    StartsWith("Failed to launch before FTP: [\"" + folder.Path().string()),
                    HasSubstr("*]  Err="), HasSubstr("The system cannot find the file specified."))));
    EXPECT_THAT(Leftovers(), ElementsAre());

    WriteFile(folder.Path() / "7za.exe", "no program");
    EXPECT_THAT(Verdicts(Ship("case")), ElementsAre(StartsWith("Failed to launch before FTP: [")));
}

TEST_F(Archiver, ThatTakesTooLongIsLeftAlone)
{
    fs::copy_file(TAVO_TEST_DIR "/impatient", folder.Path() / "Tavo", fs::copy_options::overwrite_existing);
    ReplaceArchiver("sleep 6; echo late > ended");
    const ProgramOutcome outcome = Ship("case");
    EXPECT_TRUE(outcome.ended);
    EXPECT_THAT(Verdicts(outcome), ElementsAre("Timed out waiting for log compression"));
    EXPECT_THAT(outcome.console, testing::Not(HasSubstr("Beginning upload")));
    // It is not ended: it goes on in the log directory.
    for (int i = 0; i < 100 && !fs::exists(Logs() / "ended"); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ("late\n", ReadFile(Logs() / "ended"));
}

TEST_F(Archiver, HasNoInputAndNoFileOfTheProgramsOwn)
{
    const RealFtpServer server(kFtpUser, kFtpPassword);
    ReplaceArchiver("{ pwd; cat; ls -l /proc/self/fd | sed -n 's/.* \\([0-9]*\\) -> /\\1 /p'; } > '" +
                    (folder.Path() / "seen").string() + "' 2>&1");
    Ship("case");
    const std::string seen = ReadFile(folder.Path() / "seen");
    EXPECT_THAT(seen, StartsWith(Logs().string() + "\n"));
    EXPECT_THAT(seen, HasSubstr("0 /dev/null\n"));
    // 0, 1, 2 and the directory that ls reads.
    EXPECT_EQ(5, std::count(seen.begin(), seen.end(), '\n')) << seen;
}

using LogDirectory = ShipmentTest;

TEST_F(LogDirectory, WithUnreadableFoldersALoopAndGreatDepthIsShippedAsFarAsCanBe)
{
    const RealFtpServer server(kFtpUser, kFtpPassword);
    WriteFile(Logs() / "fresh.log", "fresh");
    WriteFile(Logs() / "closed" / "secret.log", "secret");
    fs::create_directory_symlink("..", Logs() / "closed" / "parent");
    fs::create_directory_symlink(".", Logs() / "self");
    fs::path deep = Logs();
    for (int level = 0; level < 200; ++level)
        deep /= "level";
    WriteFile(deep / "deep.log", "deep");
    WriteFile(deep / "old.log", "old");
    MakeOld(deep / "old.log");
    // As a user to whom rights mean something.
    ASSERT_EQ(0, std::system(("chown -R nobody '" + folder.Path().string() + "'; chmod 0 '" +
                              (Logs() / "closed").string() + "'")
                                 .c_str()));
    ProgramStart start = Unattended("case");
    start.asOtherUser = true;
    const ProgramOutcome outcome = folder.Run(start);
    EXPECT_TRUE(outcome.ended);
    // 1 is the archiver's own word for what it could not read.
    EXPECT_THAT(Verdicts(outcome), ElementsAre("Compression finished.  Exit Code: 1", kSent))
        << outcome.console;
    EXPECT_THAT(outcome.console, HasSubstr("Ignoring:\nold.log\n"));
    // 2: the loop lies in the archive as a link, which the unpacker refuses to follow.
    const fs::path unpacked = Unpack(server.Directory() / "case.zip", 2);
    EXPECT_EQ("fresh", ReadFile(unpacked / "fresh.log"));
    EXPECT_EQ("deep", ReadFile(unpacked / fs::relative(deep, Logs()) / "deep.log"));
    EXPECT_THAT(Leftovers(), ElementsAre());
    fs::permissions(Logs() / "closed", fs::perms(0755));
}

TEST_F(LogDirectory, ThatIsReadOnlyGivesAnArchiverErrorAndEnds)
{
    WriteFile(Logs() / "fresh.log", "fresh");
    ASSERT_EQ(0, std::system(
                     ("chown -R nobody '" + folder.Path().string() + "'; chmod 555 '" + Logs().string() + "'")
                         .c_str()));
    ProgramStart start = Unattended("case");
    start.asOtherUser = true;
    const ProgramOutcome outcome = folder.Run(start);
    EXPECT_TRUE(outcome.ended);
    EXPECT_THAT(Verdicts(outcome),
                ElementsAre("Compression finished.  Exit Code: 2", "Error - " + kMissing, kDirect,
                            "Error - " + kMissing, "Log FTP failed with: " + kMissing))
        << outcome.console;
}

TEST_F(LogDirectory, ThatIsMissingIsMadeOrReported)
{
    const RealFtpServer server(kFtpUser, kFtpPassword);
    fs::remove_all(Logs());
    const ProgramOutcome outcome = Ship("case");
    EXPECT_TRUE(outcome.ended);
    // The program's own log makes the directory anew.
    EXPECT_THAT(Verdicts(outcome), ElementsAre("Compression finished.  Exit Code: 0", kSent))
        << outcome.console;
    EXPECT_TRUE(fs::exists(Unpack(server.Directory() / "case.zip") / "Tavo.log"));
}

TEST_F(LogDirectory, OnAFullDiskGivesAnArchiverErrorAndLeavesNothing)
{
    ASSERT_EQ(0, mount("none", Logs().c_str(), "tmpfs", 0, "size=3m"));
    WriteFile(Logs() / "random.log", RandomBytes(2000000));
    const ProgramOutcome outcome = Ship("case");
    EXPECT_TRUE(outcome.ended);
    EXPECT_THAT(Verdicts(outcome), testing::Contains(StartsWith("Compression finished.  Exit Code: ")))
        << outcome.console;
    EXPECT_THAT(Verdicts(outcome), testing::Not(testing::Contains("Compression finished.  Exit Code: 0")))
        << outcome.console;
    EXPECT_THAT(Leftovers(), ElementsAre());
    umount(Logs().c_str());
}
