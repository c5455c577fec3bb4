// SPDX-License-Identifier: MIT
// The Windows program ships to the same server. Its network is that of the Wine server, so the prefix is
// one of the test's own.
#include "tests/shipment/ShipmentRun.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace fs = std::filesystem;
using testing::HasSubstr;

using WineShipment = ShipmentTest;

TEST_F(WineShipment, BringsTheFreshFilesAndSaysWhatItDoes)
{
    const fs::path source = TAVO_SOURCE_DIR;
    const fs::path build = source / "build-windows";
    if (std::string(TAVO_TEST_BUILD) != "release" || !fs::exists(build / "tests" / "show_console.exe"))
        GTEST_SKIP() << "the Windows program is not built";
    if (!fs::exists(build / "bin" / "7za.exe"))
        GTEST_SKIP() << "there is no archiver for Windows";
    const char* display = std::getenv("TAVO_WINE_DISPLAY");

    const std::string fresh = RandomBytes(5000000);
    const std::string cyrillic = "\xD0\xBD\xD0\xBE\xD0\xB2.log";
    WriteFile(Logs() / "sub folder" / "fresh.log", fresh);
    WriteFile(Logs() / "sub folder" / cyrillic, "fresh");
    for (const std::string& old : {std::string("old.log"), "old " + cyrillic})
    {
        WriteFile(Logs() / old, "old");
        MakeOld(Logs() / old);
    }

    const RealFtpServer server(kFtpUser, kFtpPassword);
    const fs::path shown = folder.Path() / "shown";
    // A made prefix shares its files with the new one: none of them is written in place.
    const std::string command =
        "made='" + (build / "wine").string() + "'; export WINEPREFIX='" + (build / "wine-shipment").string() +
        "' LC_ALL=C.UTF-8; " + (display == nullptr ? "" : "export DISPLAY=" + std::string(display) + "; ") +
        "[ -e \"$WINEPREFIX\" ] || [ ! -f \"$made/.made\" ] || cp -al \"$made\" \"$WINEPREFIX\"; '" +
        (source / "scripts" / "wine-run").string() + "' '" + (build / "tests" / "show_console.exe").string() +
        "' --logs '" + Logs().string() + "' '-FTP_LOG=wine case' </dev/null >'" + shown.string() +
        "'; code=$?; wineserver -k -w; exit $code";
    EXPECT_EQ(0, std::system(command.c_str()));

    ProgramOutcome outcome;
    outcome.console = ReadFile(shown);
    std::erase(outcome.console, '\r');
    EXPECT_THAT(Verdicts(outcome), testing::ElementsAre("Compression finished.  Exit Code: 0", kSent))
        << outcome.console;
    for (const std::string& text : {"FTP_LOG: Ignoring:\nold " + cyrillic + "\nold.log\n",
                                    std::string("FTP_LOG: 226 Transfer complete.\n"),
                                    std::string("FTP_LOG: 100% done, "), std::string("left: old.log\n")})
        EXPECT_THAT(outcome.console, HasSubstr(text));
    for (const char* text : {"left: uploadIgnoreList.txt", "left: wine case.zip"})
        EXPECT_THAT(outcome.console, testing::Not(HasSubstr(text)));

    const fs::path unpacked = Unpack(server.Directory() / "wine case.zip");
    EXPECT_TRUE(fresh == ReadFile(unpacked / "sub folder" / "fresh.log"));
    EXPECT_EQ("fresh", ReadFile(unpacked / "sub folder" / cyrillic));
    EXPECT_FALSE(fs::exists(unpacked / "old.log"));
    EXPECT_FALSE(fs::exists(unpacked / ("old " + cyrillic)));
}
