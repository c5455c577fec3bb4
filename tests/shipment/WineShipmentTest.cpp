// SPDX-License-Identifier: MIT
// The Windows program ships to the same server. Its network is that of the Wine server, so the prefix is
// one of the test's own.
#include "tests/shipment/ShipmentRun.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace fs = std::filesystem;

using WineShipment = ShipmentTest;

TEST_F(WineShipment, BringsTheFreshFilesUnattended)
{
    const fs::path source = TAVO_SOURCE_DIR;
    const fs::path bin = source / "build-windows" / "bin";
    if (std::string(TAVO_TEST_BUILD) != "release" || !fs::exists(bin / "Tavo.exe"))
        GTEST_SKIP() << "the Windows program is not built";
    if (!fs::exists(bin / "7za.exe"))
        GTEST_SKIP() << "there is no archiver for Windows";
    const char* display = std::getenv("TAVO_WINE_DISPLAY");

    const fs::path program = folder.Path() / "windows";
    fs::create_directories(program);
    for (const fs::directory_entry& entry : fs::directory_iterator(bin))
        if (entry.is_regular_file())
            fs::copy_file(entry.path(), program / entry.path().filename());
    const std::string fresh = RandomBytes(5000000);
    WriteFile(program / "Logs" / "sub folder" / "fresh.log", fresh);
    WriteFile(program / "Logs" / "\xD0\xBD\xD0\xBE\xD0\xB2\xD1\x8B\xD0\xB9.log", "fresh");
    WriteFile(program / "Logs" / "old.log", "old");
    WriteFile(program / "Logs" / "\xD1\x81\xD1\x82\xD0\xB0\xD1\x80\xD1\x8B\xD0\xB9.log", "old");
    MakeOld(program / "Logs" / "old.log");
    MakeOld(program / "Logs" / "\xD1\x81\xD1\x82\xD0\xB0\xD1\x80\xD1\x8B\xD0\xB9.log");

    const RealFtpServer server(kFtpUser, kFtpPassword);
    const std::string prefix = (folder.Path() / "prefix").string();
    const std::string command =
        "export WINEPREFIX='" + prefix + "' WINEPATH='" + program.string() + "' LC_ALL=C.UTF-8; " +
        (display == nullptr ? "" : "export DISPLAY=" + std::string(display) + "; ") + "'" +
        (source / "scripts" / "wine-run").string() + "' '" + (program / "Tavo.exe").string() +
        "' '-FTP_LOG=wine case' -AUTOCLOSE yes </dev/null >/dev/null 2>&1; wineserver -k -w";
    EXPECT_EQ(0, std::system(command.c_str()));

    ASSERT_TRUE(fs::exists(server.Directory() / "wine case.zip"));
    const fs::path unpacked = Unpack(server.Directory() / "wine case.zip");
    EXPECT_TRUE(fresh == ReadFile(unpacked / "sub folder" / "fresh.log"));
    EXPECT_EQ("fresh", ReadFile(unpacked / "\xD0\xBD\xD0\xBE\xD0\xB2\xD1\x8B\xD0\xB9.log"));
    EXPECT_FALSE(fs::exists(unpacked / "old.log"));
    EXPECT_FALSE(fs::exists(unpacked / "\xD1\x81\xD1\x82\xD0\xB0\xD1\x80\xD1\x8B\xD0\xB9.log"));
    EXPECT_FALSE(fs::exists(program / "Logs" / "uploadIgnoreList.txt"));
    EXPECT_FALSE(fs::exists(program / "Logs" / "wine case.zip"));
}
