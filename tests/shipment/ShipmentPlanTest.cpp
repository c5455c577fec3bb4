// SPDX-License-Identifier: MIT
#include "shipment/ShipmentPlan.h"

#include "shipment/PackingLimit.h"
#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <chrono>

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
    using namespace std::chrono;
    const TestFolder logs;
    logs.Write("file.log", "x");
    fs::last_write_time(logs.Path() / "file.log",
                        file_clock::from_sys(sys_seconds(seconds(kCutOff))) + milliseconds(999));
    const ZTString directory = logs.Path().wstring().c_str();
    EXPECT_EQ(OldFileNames(directory, kCutOff), std::set<ZTString>{});
    EXPECT_EQ(OldFileNames(directory, kCutOff + 1), std::set<ZTString>{L"file.log"});
}

TEST(ArchiveAndList, AreDeletedThoughAScannerHoldsThem)
{
    const TestFolder logs;
    for (const char* name : {"case.zip", "case.zip.tmp", "list.txt"})
    {
        logs.Write(name, "x");
        HoldForAMoment(logs.Path() / name);
    }
    const auto deleteBoth = [&logs]
    {
        DeleteArchiveAndList((logs.Path() / "case.zip").wstring().c_str(),
                             (logs.Path() / "list.txt").wstring().c_str());
    };
    deleteBoth();
    EXPECT_TRUE(fs::is_empty(logs.Path()));
    const auto start = std::chrono::steady_clock::now();
    deleteBoth();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300)) << "nothing is there";
}
