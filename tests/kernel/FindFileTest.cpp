// SPDX-License-Identifier: MIT
#include "tests/support/ProgramFolder.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <map>

constexpr DWORD kFolder = FILE_ATTRIBUTE_DIRECTORY;
constexpr DWORD kLink = FILE_ATTRIBUTE_REPARSE_POINT;

// By name: what it is, a link's tag, the size, and when it was written (from 1970 on; 0: the last minute).
using Entries = std::map<std::wstring, std::tuple<DWORD, DWORD, std::uint64_t, std::int64_t>>;

static Entries List(const fs::path& pattern)
{
    Entries found;
    WIN32_FIND_DATAW data = {};
    const HANDLE find = FindFirstFileW(pattern.wstring().c_str(), &data);
    do
    {
        EXPECT_NE(data.dwFileAttributes, 0U);
        const DWORD kind = data.dwFileAttributes & (kFolder | kLink);
        const std::uint64_t units =
            (std::uint64_t{data.ftLastWriteTime.dwHighDateTime} << 32) | data.ftLastWriteTime.dwLowDateTime;
        const std::int64_t written = static_cast<std::int64_t>(units / 10000000) - 11644473600;
        found[data.cFileName] = {kind, (kind & kLink) != 0 ? data.dwReserved0 : 0,
                                 (std::uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow,
                                 std::abs(time(nullptr) - written) < 60 ? 0 : written};
    } while (FindNextFileW(find, &data) != FALSE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
    EXPECT_TRUE(FindClose(find));
    return found;
}

TEST(FindFile, ListsAFolderWithKindsSizesAndTimes)
{
    const TestFolder folder;
    folder.Write("old.log", "12345");
    using namespace std::chrono;
    fs::last_write_time(folder.Path() / "old.log",
                        file_clock::from_sys(sys_time(milliseconds(1700000000500))));
    folder.Write("new.txt", "");
    fs::resize_file(folder.Path() / "new.txt", 0x180000002);
    fs::create_directory(folder.Path() / "sub");
    Entries expected = {{L".", {kFolder, 0, 0, 0}},
                        {L"..", {kFolder, 0, 0, 0}},
                        {L"sub", {kFolder, 0, 0, 0}},
                        {L"old.log", {0, 0, 5, 1700000000}},
                        {L"new.txt", {0, 0, 0x180000002, 0}}};
    if (!RunsOnWindows()) // Wine makes no such links, and has no names that are not UTF-8
    {
        folder.Write("caf\xE9", "x");
        fs::create_symlink("sub", folder.Path() / "to-folder");
        fs::create_symlink("caf\xE9", folder.Path() / "to-file");
        fs::create_symlink("nowhere", folder.Path() / "to-nothing");
        expected.insert({{L"caf\xDCE9", {0, 0, 1, 0}},
                         {L"to-folder", {kFolder | kLink, IO_REPARSE_TAG_SYMLINK, 0, 0}},
                         {L"to-file", {kLink, IO_REPARSE_TAG_SYMLINK, 0, 0}},
                         {L"to-nothing", {kLink, IO_REPARSE_TAG_SYMLINK, 0, 0}}});
    }
    EXPECT_EQ(List(folder.Path() / "*"), expected);
    EXPECT_EQ(DeleteFileW((folder.Path().wstring() + L"/caf\xDCE9").c_str()), !RunsOnWindows());
}
