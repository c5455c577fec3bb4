// SPDX-License-Identifier: MIT
// Two unattended shipments on one machine, and a user who does not wait for one.
#include "tests/shipment/ShipmentRun.h"
#include "tests/support/ScriptedFtpServer.h"

using namespace testing;

using UnattendedShipment = ShipmentTest;

TEST_F(UnattendedShipment, SecondIsRefusedAndAfterAKillTheNextOneShips)
{
    // While the first one packs, the archiver starts the second, of another user, and then kills the first.
    const ProgramFolder other;
    const fs::path seen = folder.Path() / "seen";
    const fs::path packing = folder.Path() / "packing";
    ReplaceArchiver("if [ -e '" + packing.string() + "' ]; then exec \"$REAL\" \"$@\"; fi; touch '" +
                    packing.string() + "'; setpriv --reuid=nobody --regid=65534 --clear-groups '" +
                    other.Program().string() + "' -FTP_LOG=second -AUTOCLOSE=yes </dev/null >'" +
                    seen.string() + "' 2>&1; echo \"ended with $?\" >>'" + seen.string() +
                    "'; kill -9 $PPID");
    EXPECT_EQ(-SIGKILL, folder.Run(Unattended("first")).exitCode);
    const std::string second = ReadFile(seen);
    EXPECT_THAT(second, HasSubstr("Current Computer: "));
    EXPECT_THAT(second, EndsWith("ended with 0\n"));
    EXPECT_THAT(second, Not(HasSubstr("FTP_LOG:")));

    const RealFtpServer server(kFtpUser, kFtpPassword);
    for (const char* left : {"third.zip", "third.zip.tmp"})
        WriteFile(Logs() / left, "left behind by an interrupted shipment");
    EXPECT_THAT(Verdicts(Ship("third")), ElementsAre("Compression finished.  Exit Code: 0", kSent));
    EXPECT_THAT(Unpack(server.Directory() / "third.zip"),
                ElementsAre(Pair("Tavo.log", _), Pair("uploadIgnoreList.txt", "")));
}

TEST_F(UnattendedShipment, ServesAllButtonsAndIsNotCutShortByClose)
{
    const std::string content = RandomBytes(16000000); // more than the system takes without the server
    WriteFile(Logs() / "fresh.log", content);
    ScriptedFtpServer server({.bytesPerSecond = 4000000}, kFtpPort);
    ReplaceArchiver("sleep 2; exec \"$REAL\" \"$@\"");
    // And nothing else ends the program.
    const std::vector<std::string> input = {"CRC64", "Cancel", "LDAP ...", "Cancel", "Close"};
    // What the console says before the user does anything, and what comes after his last deed.
    for (const auto& [awaited, after] :
         {std::pair("Please wait...", "Compression finished"), {"% done, ", "100% done"}})
    {
        SCOPED_TRACE(awaited);
        const ProgramOutcome outcome =
            Ship({.arguments = {"-FTP_LOG=case"}, .input = input, .awaited = awaited});
        EXPECT_THAT(Verdicts(outcome), ElementsAre("Compression finished.  Exit Code: 0", kSent));
        EXPECT_LT(outcome.console.find("DiagnosticsDlg"), outcome.console.find(after)) << outcome.console;
        EXPECT_EQ("case.zip", server.UploadedName());
        EXPECT_GT(server.Uploaded().size(), content.size());
    }
}
