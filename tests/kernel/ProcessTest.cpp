// SPDX-License-Identifier: MIT
#include "tests/kernel/PeerProcess.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace
{

// A folder of the test's own, with a blank in its name.
class TestFolder
{
public:
    TestFolder() { fs::create_directories(mPath); }
    ~TestFolder() { fs::remove_all(mPath); }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const fs::path& Path() const { return mPath; }

private:
    fs::path mPath = fs::temp_directory_path() / (UniqueName(L"a folder"));
};

DWORD ErrorOfStart(std::wstring line, const wchar_t* folder)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION information = {};
    const BOOL started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, folder,
                                        &startup, &information);
    return started ? DWORD{ERROR_SUCCESS} : GetLastError();
}

} // namespace

TEST(Process, SplitsTheCommandLineAsTheCRuntimeDoes)
{
    struct Row
    {
        const wchar_t* line;
        const char* words; // one a line
    };
    const Row rows[] = {
        {L"a b\tc", "a\nb\nc\n"},
        {L"  \"a b\"   c", "a b\nc\n"},
        {L"\"\" x", "\nx\n"},                           // an empty word
        {L"a\"b c\"d", "ab cd\n"},                      // quotes inside a word
        {L"a\\b \\\\share\\x", "a\\b\n\\\\share\\x\n"}, // no quote behind: backslashes are themselves
        {L"\\\"a\\\"", "\"a\"\n"},                      // quotes taken
        {L"\"a\\\\\" b", "a\\\nb\n"},                   // an even number: the quote ends the word
        {L"\"a\\\\\\\"b\" c", "a\\\"b\nc\n"},           // an odd number: it does not
        {L"\"a\"\"b\" c", "a\"b\nc\n"},                 // doubled inside quotes
        {L"\"open end", "open end\n"},
    };
    const TestFolder folder;
    for (const Row& row : rows)
    {
        // The relative name shows that the working directory is the one asked for.
        const PeerProcess peer(L"arguments out.txt " + std::wstring(row.line), folder.Path());
        EXPECT_EQ(peer.ExitCode(), 0U);
        std::ifstream file(folder.Path() / "out.txt", std::ios::binary);
        const std::string words{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(words, row.words) << std::string(row.line, row.line + std::wcslen(row.line));
    }
}

TEST(Process, ExitCodeIsThereOnceItHasEnded)
{
    const std::wstring name = UniqueName(L"exit");
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, name.c_str());
    const PeerProcess peer(L"wait " + name + L" " + UniqueName(L"ready") + L" 60000");
    ASSERT_TRUE(peer.Started());
    DWORD code = 0;
    EXPECT_EQ(WaitForSingleObject(peer.Handle(), 100), DWORD{WAIT_TIMEOUT});
    EXPECT_TRUE(GetExitCodeProcess(peer.Handle(), &code));
    EXPECT_EQ(code, DWORD{STILL_ACTIVE});
    SetEvent(event);
    EXPECT_EQ(peer.ExitCode(), 0U);
    CloseHandle(event);

    const PeerProcess failing(L"exit 7");
    EXPECT_EQ(failing.ExitCode(), 7U);
    EXPECT_EQ(failing.ExitCode(), 7U) << "as often as one asks";
}

TEST(Process, SaysWhyItCouldNotStart)
{
    const TestFolder folder;
    const std::wstring path = folder.Path().wstring();
    EXPECT_EQ(ErrorOfStart(L"\"" + (folder.Path() / L"missing").wstring() + L"\" a", nullptr),
              DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(ErrorOfStart(L"tavo-program-that-nobody-has", path.c_str()), DWORD{ERROR_FILE_NOT_FOUND});
    const std::wstring peer = L"\"" + (FolderOfThisProgram() / L"kernelPeer").wstring() + L"\"";
    EXPECT_EQ(ErrorOfStart(peer, (path + L"/missing").c_str()), DWORD{ERROR_DIRECTORY});
}
