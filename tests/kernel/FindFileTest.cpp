// SPDX-License-Identifier: MIT
#include "tests/support/TestFolder.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <map>

namespace fs = std::filesystem;

static std::map<std::wstring, WIN32_FIND_DATAW> List(const fs::path& pattern)
{
    std::map<std::wstring, WIN32_FIND_DATAW> found;
    WIN32_FIND_DATAW data = {};
    const HANDLE find = FindFirstFileW(pattern.wstring().c_str(), &data);
    do
        found[data.cFileName] = data;
    while (FindNextFileW(find, &data) != FALSE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
    EXPECT_TRUE(FindClose(find));
    return found;
}

// Seconds since 1970.
static std::int64_t Seconds(FILETIME time)
{
    const std::int64_t units = (static_cast<std::int64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
    return units / 10000000 - 11644473600;
}

TEST(FindFile, ListsAFolderWithKindSizeAndTime)
{
    const TestFolder folder;
    folder.Write("old.log", "12345");
    folder.Write("new.txt", "");
    fs::create_directory(folder.Path() / "sub");
    using namespace std::chrono;
    const auto old = fs::file_time_type::clock::now() - hours(24 * 30);
    fs::last_write_time(folder.Path() / "old.log", old);
    const std::int64_t now = duration_cast<seconds>(system_clock::now().time_since_epoch()).count();

    auto found = List(folder.Path() / "*");
    ASSERT_EQ(found.size(), 5U); // with . and ..
    EXPECT_EQ(found[L"."].dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY, DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_EQ(found[L"sub"].dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY, DWORD{FILE_ATTRIBUTE_DIRECTORY});
    const WIN32_FIND_DATAW& log = found[L"old.log"];
    EXPECT_EQ(log.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT), 0U);
    EXPECT_NE(log.dwFileAttributes, 0U);
    EXPECT_EQ(log.nFileSizeLow, 5U);
    EXPECT_NEAR(static_cast<double>(Seconds(log.ftLastWriteTime)), static_cast<double>(now - 24 * 30 * 3600),
                5);
    EXPECT_NEAR(static_cast<double>(Seconds(found[L"new.txt"].ftLastWriteTime)), static_cast<double>(now), 5);
}

TEST(FindFile, SaysWhatIsMissing)
{
    const TestFolder folder;
    WIN32_FIND_DATAW data = {};
    EXPECT_EQ(FindFirstFileW((folder.Path() / L"none" / L"*").wstring().c_str(), &data),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_FALSE(FindNextFileW(INVALID_HANDLE_VALUE, &data));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}

TEST(FindFile, DeleteTakesAFileAndNothingElse)
{
    const TestFolder folder;
    folder.Write("file", "x");
    fs::create_directory(folder.Path() / "sub");
    EXPECT_TRUE(DeleteFileW((folder.Path() / L"file").wstring().c_str()));
    EXPECT_FALSE(fs::exists(folder.Path() / "file"));
    EXPECT_FALSE(DeleteFileW((folder.Path() / L"file").wstring().c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_FALSE(DeleteFileW((folder.Path() / L"sub").wstring().c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}
