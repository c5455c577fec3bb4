// SPDX-License-Identifier: MIT
#include "shipment/ShipmentPlan.h"

#include "foundation/Kelvane.h"
#include "shipment/PackingLimit.h"
#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <chrono>

namespace fs = std::filesystem;

constexpr std::int64_t kCutOff = 1700000000;

TEST(Shipment, WaitsTwentyMinutesForItsArchiver)
{
    EXPECT_EQ(kPackingLimit, 20 * 60);
}

TEST(ArchiveName, IsTheDateWhereNoneIsGiven)
{
    EXPECT_EQ(ArchiveName(L" \t\r\n"), ArchiveName(nullptr));
}

TEST(OldFileNames, ExactlyTheCutOffIsNotOld)
{
    const TestFolder logs;
    const fs::path file = logs.Path() / "file.log";
    WriteFile(file, "x");
    // One clock for all systems: the distance from now.
    const auto age = std::chrono::seconds(std::time(nullptr) - kCutOff);
    fs::last_write_time(file, fs::file_time_type::clock::now() - age);
    WIN32_FIND_DATAW entry{};
    const HANDLE find = FindFirstFileW((logs.Path() / "*").wstring().c_str(), &entry);
    while (std::wstring(entry.cFileName) != L"file.log" && FindNextFileW(find, &entry))
        ;
    FindClose(find);
    const std::int64_t written = FILETIMEToTimeT(entry.ftLastWriteTime);
    EXPECT_NEAR(static_cast<double>(kCutOff), static_cast<double>(written), 2);
    const ZTString directory = logs.Path().wstring().c_str();
    EXPECT_EQ(OldFileNames(directory, written), std::set<ZTString>{});
    EXPECT_EQ(OldFileNames(directory, written + 1), std::set<ZTString>{L"file.log"});
}

TEST(ArchiveAndList, AreDeletedThoughAScannerHoldsThem)
{
    const TestFolder logs;
    for (const char* name : {"case.zip", "case.zip.tmp", "list.txt"})
    {
        logs.Write(name, "x");
        HoldForAMoment(logs.Path() / name);
    }
    DeleteArchiveAndList((logs.Path() / "case.zip").wstring().c_str(),
                         (logs.Path() / "list.txt").wstring().c_str());
    EXPECT_TRUE(fs::is_empty(logs.Path()));
}
