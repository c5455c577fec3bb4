// SPDX-License-Identifier: MIT
#include "shipment/ShipmentPlan.h"

#include "foundation/DateValue.h"
#include "foundation/Kelvane.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <random>

namespace fs = std::filesystem;

namespace
{

class TemporaryDirectory
{
public:
    TemporaryDirectory()
    {
        std::random_device random;
        mPath =
            fs::temp_directory_path() / ("tavo-plan-" + std::to_string(random()) + std::to_string(random()));
        fs::create_directories(mPath);
    }
    ~TemporaryDirectory()
    {
        std::error_code ignored;
        fs::remove_all(mPath, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    const fs::path& Path() const { return mPath; }

private:
    fs::path mPath;
};

constexpr std::int64_t kCutOff = 1700000000;

void MakeFile(const fs::path& path, std::int64_t seconds)
{
    fs::create_directories(path.parent_path());
    std::ofstream(path) << "x";
    // One clock for all systems: the distance from now.
    const auto age = std::chrono::seconds(std::time(nullptr) - seconds);
    fs::last_write_time(path, fs::file_time_type::clock::now() - age);
}

ZTString OldNames(const fs::path& directory, std::int64_t cutOff)
{
    return GetStringFromSet(OldFileNames(ZTString(directory.wstring().c_str()), cutOff), L"|");
}

} // namespace

TEST(ArchiveName, TakesTheWantedNameOrTheDate)
{
    const DateValue today = DateFromTime(std::time(nullptr));
    ZTString dated;
    dated.Format(L"Logs-{0}-{1}-{2}", today.GetYear(), today.GetMonth(), today.GetDay());
    const struct
    {
        const wchar_t* wanted;
        const wchar_t* expected;
    } rows[] = {
        {nullptr, dated},
        {L"", dated},
        {L" \t\r\n ", dated},
        {L"\t case 4711 \r\n", L"case 4711"},
        {L"name.zip", L"name.zip"},
        {L"..\\x", L".._x"},
        {L"a/b:c*d?e\"f<g>h|i", L"a_b_c_d_e_f_g_h_i"},
        {L"\u041B\u043E\u0433 \u65E5\u5FD7 \U0001F600", L"\u041B\u043E\u0433 \u65E5\u5FD7 \U0001F600"},
        {L"CON", L"_CON"},
        {L"it's", L"it's"},
    };
    for (const auto& [wanted, expected] : rows)
        EXPECT_STREQ(expected, ArchiveName(wanted));
    EXPECT_EQ(200, ArchiveName(std::wstring(200, L'x').c_str()).GetLength());
}

TEST(OldFileNames, AreThoseBelowTheCutOffInTheWholeTreeEachOnce)
{
    const TemporaryDirectory logs;
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
    std::error_code ignored; // MinGW's library cannot set a directory's time
    fs::last_write_time(root / "old directory",
                        fs::file_time_type::clock::now() - std::chrono::hours(24 * 10000), ignored);
    EXPECT_STREQ(L"A.log|mixed.log|old.log|twice.log", OldNames(root, kCutOff));
    EXPECT_STREQ(L"", OldNames(root / "nowhere", kCutOff));
}

TEST(OldFileNames, ExactlyTheCutOffIsNotOld)
{
    const TemporaryDirectory logs;
    MakeFile(logs.Path() / "file.log", kCutOff);
    const auto written = fs::last_write_time(logs.Path() / "file.log");
    // The whole second of the file's time, found by the function's own measure: the first at which it counts
    // as old is one later than the last at which it does not.
    std::int64_t cutOff = kCutOff - 5;
    while (cutOff < kCutOff + 5 && OldNames(logs.Path(), cutOff).IsEmpty())
        ++cutOff;
    EXPECT_NEAR(static_cast<double>(kCutOff + 1), static_cast<double>(cutOff), 2);
    fs::last_write_time(logs.Path() / "file.log", written - std::chrono::seconds(1));
    EXPECT_STREQ(L"file.log", OldNames(logs.Path(), cutOff - 1));
    EXPECT_STREQ(L"", OldNames(logs.Path(), cutOff - 2));
}

TEST(OldFileNames, GoDeepAndNotThroughLinks)
{
    const TemporaryDirectory logs;
    fs::path deep = logs.Path();
    // Short names: Windows paths end at 260 characters.
    for (int level = 0; level < 50; ++level)
        deep /= "d";
    MakeFile(deep / "deep.log", kCutOff - 60);
    const TemporaryDirectory elsewhere;
    MakeFile(elsewhere.Path() / "elsewhere.log", kCutOff - 60);
    std::error_code error;
    fs::create_directory_symlink(logs.Path(), deep / "loop", error);
    fs::create_directory_symlink(elsewhere.Path(), logs.Path() / "link", error);
    if (error)
        std::fprintf(stderr, "no links here: %s\n", error.message().c_str());
    EXPECT_STREQ(L"deep.log", OldNames(logs.Path(), kCutOff));
}

TEST(ArchiverCommandLine, LeavesTwoBlanksWhereNothingIsExcluded)
{
    const std::wstring archiver = GetPathInAppFolder(L"7za.exe").GetString();
    EXPECT_EQ(L"\"" + archiver + L"\" a -r -ssw  \"/logs/a b.zip\" *",
              std::wstring(ArchiverCommandLine(false, L"/logs/a b.zip")));
    EXPECT_EQ(L"\"" + archiver + L"\" a -r -ssw -x@uploadIgnoreList.txt \"/logs/a b.zip\" *",
              std::wstring(ArchiverCommandLine(true, L"/logs/a b.zip")));
}
