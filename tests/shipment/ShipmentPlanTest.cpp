// SPDX-License-Identifier: MIT
#include "shipment/ShipmentPlan.h"

#include "foundation/DateValue.h"
#include "foundation/Kelvane.h"
#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>

#include <chrono>

namespace fs = std::filesystem;

constexpr std::int64_t kCutOff = 1700000000;

static void MakeFile(const fs::path& path, std::int64_t seconds)
{
    WriteFile(path, "x");
    // One clock for all systems: the distance from now.
    const auto age = std::chrono::seconds(std::time(nullptr) - seconds);
    fs::last_write_time(path, fs::file_time_type::clock::now() - age);
}

static ZTString OldNames(const fs::path& directory, std::int64_t cutOff)
{
    return GetStringFromSet(OldFileNames(ZTString(directory.wstring().c_str()), cutOff), L"|");
}

TEST(ArchiveName, TakesTheWantedNameOrTheDate)
{
    const DateValue today = DateFromTime(std::time(nullptr));
    ZTString dated;
    dated.Format(L"Logs-{0}-{1}-{2}", today.GetYear(), today.GetMonth(), today.GetDay());
    EXPECT_EQ(dated, ArchiveName(L" \t\r\n "));
    EXPECT_EQ(L"case 4711", ArchiveName(L"\t\r\n case 4711 \r\n\t"));
}

TEST(OldFileNames, AreThoseBelowTheCutOffInTheWholeTreeEachOnce)
{
    const TestFolder logs;
    const fs::path& root = logs.Path();
    // The margin of a minute is for the clock of MakeFile; the exact second has a test of its own.
    MakeFile(root / "new.log", kCutOff + 60);
    MakeFile(root / "old.log", kCutOff - 60);
    MakeFile(root / "a" / "twice.log", kCutOff - 60);
    MakeFile(root / "b" / "c" / "twice.log", kCutOff - 60);
    MakeFile(root / "b" / "mixed.log", kCutOff + 60);
    MakeFile(root / "a" / "mixed.log", kCutOff - 60);
    MakeFile(root / "b" / "A.log", kCutOff - 60);
    fs::create_directories(root / "old directory");
    std::error_code ignored; // MinGW's library can set no directory's time and make no link
    fs::last_write_time(root / "old directory",
                        fs::file_time_type::clock::now() - std::chrono::hours(24 * 10000), ignored);
    fs::path deep = root;
    // Short names: Windows paths end at 260 characters.
    for (int level = 0; level < 50; ++level)
        deep /= "d";
    MakeFile(deep / "deep.log", kCutOff - 60);
    fs::create_directory_symlink(root, deep / "loop", ignored);
    const TestFolder elsewhere;
    MakeFile(elsewhere.Path() / "elsewhere.log", kCutOff - 60);
    fs::create_directory_symlink(elsewhere.Path(), root / "link", ignored);
    fs::create_symlink(elsewhere.Path() / "elsewhere.log", root / "link to a file", ignored);
    EXPECT_STREQ(L"A.log|deep.log|mixed.log|old.log|twice.log", OldNames(root, kCutOff));
    EXPECT_STREQ(L"", OldNames(root / "nowhere", kCutOff));
}

TEST(OldFileNames, ExactlyTheCutOffIsNotOld)
{
    const TestFolder logs;
    MakeFile(logs.Path() / "file.log", kCutOff);
    WIN32_FIND_DATAW entry{};
    const HANDLE find = FindFirstFileW((logs.Path() / "*").wstring().c_str(), &entry);
    while (std::wstring(entry.cFileName) != L"file.log" && FindNextFileW(find, &entry))
        ;
    FindClose(find);
    const std::int64_t written = FILETIMEToTimeT(entry.ftLastWriteTime);
    EXPECT_NEAR(static_cast<double>(kCutOff), static_cast<double>(written), 2);
    EXPECT_STREQ(L"", OldNames(logs.Path(), written));
    EXPECT_STREQ(L"file.log", OldNames(logs.Path(), written + 1));
}
