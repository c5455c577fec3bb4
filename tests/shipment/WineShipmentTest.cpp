// SPDX-License-Identifier: MIT
// The Windows program ships to the same server, in a prefix of its own: its network is the Wine server's.
#include "tests/shipment/ShipmentRun.h"
#include "tests/support/ScriptedFtpServer.h"

#include <cstdlib>

using namespace testing;

const fs::path kBuild = fs::path(TAVO_SOURCE_DIR) / "build-windows";
const fs::path kKeys = kBuild / "keys"; // of TLS, which the environment asks for and does not get

class WineShipment : public ShipmentTest
{
protected:
    void SetUp() override
    {
        if (std::string(TAVO_TEST_BUILD) != "release" || !fs::exists(kBuild / "tests" / "show_console.exe"))
            GTEST_SKIP() << "the Windows program is not built";
        ShipmentTest::SetUp();
    }

    // Runs a shell's commands, in which $RUN runs a Windows program in the prefix; its exit code.
    static int Run(const std::string& commands)
    {
        const char* display = std::getenv("TAVO_WINE_DISPLAY");
        // A made prefix shares its files with the new one: none of them is written in place.
        return std::system(
            ("made='" + (kBuild / "wine").string() + "'; export WINEPREFIX='" +
             (kBuild / "wine-shipment").string() + "' LC_ALL=C.UTF-8 SSLKEYLOGFILE='" + kKeys.string() +
             "'; " + (display == nullptr ? "" : "export DISPLAY=" + std::string(display) + "; ") +
             "[ -e \"$WINEPREFIX\" ] || [ ! -f \"$made/.made\" ] || cp -al \"$made\" \"$WINEPREFIX\"; RUN='" +
             TAVO_SOURCE_DIR "/scripts/wine-run'; " + commands + "; code=$?; wineserver -k -w; exit $code")
                .c_str());
    }
};

TEST_F(WineShipment, BringsTheFreshFilesAndSaysWhatItDoes)
{
    const std::string fresh = RandomBytes(5000000);
    const std::string cyrillic = "нов.log";
    WriteFile(Logs() / "sub folder" / "fresh.log", fresh);
    WriteFile(Logs() / "sub folder" / cyrillic, "fresh");
    for (const std::string& old : {std::string("old.log"), "old " + cyrillic})
    {
        WriteFile(Logs() / old, "old");
        MakeOld(Logs() / old);
    }

    // The server demands TLS. Without passive mode the component is asked again, for direct mode.
    const std::string packed = "Compression finished.  Exit Code: 0";
    const std::tuple<const char*, const char*, std::vector<std::string>> ways[] = {
        {"", "EPSV", {packed, kSent}},
        {"pasv_enable=NO\n",
         "EPRT |1|127.0.0.1|",
         {packed, "Error - 550 Permission denied.", kDirect, kSent}},
    };
    for (const auto& [settings, command, verdicts] : ways)
    {
        const RealFtpServer server(kFtpUser, kFtpPassword, kTlsSettings + settings);
        const fs::path shown = folder.Path() / "shown";
        EXPECT_EQ(0, Run("$RUN '" + (kBuild / "tests" / "show_console.exe").string() + "' --logs '" +
                         Logs().string() + "' '-FTP_LOG=wine case' </dev/null >'" + shown.string() + "'"));

        ProgramOutcome outcome;
        outcome.console = ReadFile(shown);
        std::erase(outcome.console, '\r');
        EXPECT_EQ(Verdicts(outcome), verdicts) << outcome.console;
        EXPECT_THAT(outcome.console, HasSubstr("FTP_LOG: Ignoring:\nold " + cyrillic + "\nold.log\n"));
        EXPECT_THAT(outcome.console, HasSubstr("FTP_LOG: 100% done, "));
        const std::vector<std::string> lines = ShipmentLines(outcome);
        for (const char* said : {"The connection is encrypted", command})
            EXPECT_THAT(lines, Contains(StartsWith(said)));
        for (const char* once : {"150 ", "226 Transfer complete."})
            EXPECT_THAT(lines, Contains(StartsWith(once)).Times(1));
        EXPECT_THAT(std::vector<fs::path>(fs::directory_iterator(Logs()), {}),
                    UnorderedElementsAre(Logs() / "Tavo.log", Logs() / ("old " + cyrillic),
                                         Logs() / "old.log", Logs() / "sub folder"));

        const Tree sent = Unpack(server.Directory() / "wine case.zip");
        EXPECT_THAT(sent, UnorderedElementsAre(Pair("Tavo.log", _), Pair("uploadIgnoreList.txt", _),
                                               Pair("sub folder/fresh.log", fresh),
                                               Pair("sub folder/" + cyrillic, "fresh")));
        EXPECT_FALSE(fs::exists(kKeys));
    }
}

TEST_F(WineShipment, EndsInOrderWithTheSession)
{
    const fs::path windows = folder.Path() / "windows";
    fs::copy(kBuild / "bin", windows, fs::copy_options::recursive);
    const fs::path logs = windows / "Logs";
    fs::remove_all(logs);
    WriteFile(logs / "fresh.log", RandomBytes(3000000));
    ScriptedFtpServer server({.bytesPerSecond = 100000}, kFtpPort);
    // The session ends while the archive is sent, after a request to close that waits for the shipment.
    Run("$RUN '" + (windows / "Tavo.exe").string() + "' -FTP_LOG=case </dev/null & cd '" + logs.string() +
        "'; for i in $(seq 300); do ss -Htn state established dport = :21 | grep -q . && break; sleep 0.1; "
        "done; "
        "sleep 1; $RUN taskkill /im Tavo.exe; sleep 2; [ -e case.zip ] && $RUN wineboot --end-session; wait");
    EXPECT_GT(server.Uploaded().size(), 0U);
    EXPECT_THAT(std::vector<fs::path>(fs::directory_iterator(logs), {}),
                UnorderedElementsAre(logs / "Tavo.log", logs / "fresh.log"));
    EXPECT_THAT(ReadFile(logs / "Tavo.log"), HasSubstr(": ended with the session"));
}
