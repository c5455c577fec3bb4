// SPDX-License-Identifier: MIT
// What of the layer shows only from the Linux side: users, signals, open files, names that are no UTF-8.
#include "platform/kernel/Text.h"
#include "tests/kernel/PeerProcess.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <grp.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <sstream>

namespace fs = std::filesystem;

namespace
{

constexpr uid_t kNobody = 65534;

DWORD ErrorOfStart(std::wstring line)
{
    STARTUPINFOW startup = {};
    PROCESS_INFORMATION information = {};
    const BOOL started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                        &startup, &information);
    return started ? DWORD{ERROR_SUCCESS} : GetLastError();
}

// What opening an event gives to the user nobody.
int OpenAsNobody(const std::wstring& name)
{
    // The build folder may lie where nobody else gets in; an open file of the program serves instead.
    const fs::path program = FolderOfThisProgram() / "kernelPeer";
    const std::string event = SystemFromWide(name);
    const pid_t child = fork();
    if (child == 0)
    {
        const int file = open(program.c_str(), O_RDONLY);
        const char* arguments[] = {"kernelPeer", "open", event.c_str(), nullptr};
        if (setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0)
        {
            fexecve(file, const_cast<char**>(arguments), environ);
        }
        _exit(98);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

TEST(HandleOnLinux, IsNeverUsedAgainOnceClosed)
{
    const HANDLE closed = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    EXPECT_TRUE(CloseHandle(closed));
    const HANDLE next = CreateEventW(nullptr, TRUE, TRUE, nullptr);
    EXPECT_NE(next, closed);
    EXPECT_EQ(WaitForSingleObject(closed, 0), DWORD{WAIT_FAILED});
    EXPECT_FALSE(CloseHandle(closed));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    CloseHandle(next);
    WIN32_FIND_DATAW data = {};
    const HANDLE find = FindFirstFileW(L"/*", &data);
    EXPECT_FALSE(CloseHandle(find)) << "a find handle has a call of its own";
    EXPECT_TRUE(FindClose(find));
    EXPECT_FALSE(FindClose(find));
}

TEST(NamedEventOfUsers, NullAccessListOpensItToEveryUser)
{
    if (geteuid() != 0)
    {
        GTEST_SKIP() << "only root can become another user";
    }
    SECURITY_DESCRIPTOR descriptor = {};
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&descriptor, TRUE, nullptr, FALSE);
    SECURITY_ATTRIBUTES attributes = {sizeof attributes, &descriptor, TRUE};
    const std::wstring name = UniqueName(L"users");
    const mode_t old = umask(0077); // has no say in it
    const HANDLE open = CreateEventW(&attributes, FALSE, FALSE, (L"Global\\" + name).c_str());
    umask(old);
    EXPECT_EQ(OpenAsNobody(name), ERROR_ALREADY_EXISTS);
    CloseHandle(open);
    EXPECT_EQ(OpenAsNobody(name), ERROR_SUCCESS) << "gone with its file, whoever made that";

    const HANDLE closed = CreateEventW(nullptr, FALSE, FALSE, name.c_str());
    EXPECT_EQ(OpenAsNobody(name), ERROR_ACCESS_DENIED);
    CloseHandle(closed);
}

TEST(NamedEventFile, IsThereOnlyWhileTheNameIs)
{
    const std::wstring name = UniqueName(L"a/../b %");
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, name.c_str());
    ASSERT_NE(event, nullptr);
    const auto files = []
    {
        int count = 0;
        for (const auto& entry : fs::directory_iterator("/dev/shm"))
        {
            count += entry.path().filename().string().find("a%2F..%2Fb%20%25") != std::string::npos;
        }
        return count;
    };
    EXPECT_EQ(files(), 1);
    CloseHandle(event);
    EXPECT_EQ(files(), 0);
}

TEST(NamedEventFile, KeptLockedBySomebodyHoldsNobodyUpForEver)
{
    const std::wstring name = UniqueName(L"locked");
    const std::string path = "/dev/shm/tavo." + SystemFromWide(name);
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    struct flock all = {};
    all.l_type = F_WRLCK;
    all.l_whence = SEEK_SET;
    ASSERT_EQ(fcntl(file, F_OFD_SETLK, &all), 0);
    EXPECT_EQ(CreateEventW(nullptr, FALSE, FALSE, name.c_str()), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    close(file);
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, name.c_str());
    EXPECT_NE(event, nullptr);
    CloseHandle(event);
    EXPECT_FALSE(fs::exists(path));
}

TEST(ProcessOnLinux, SignalsDeathIsAFailure)
{
    const PeerProcess peer(L"wait " + UniqueName(L"never") + L" " + UniqueName(L"ready") + L" 60000");
    peer.Kill();
    EXPECT_EQ(peer.ExitCode(), 128U + SIGKILL);
}

TEST(ProcessOnLinux, LeavesNoZombieWhenNobodyWaits)
{
    const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, UniqueName(L"zombie").c_str());
    pid_t running = 0;
    {
        const PeerProcess peer(L"wait " + UniqueName(L"go") + L" " + UniqueName(L"zombie") + L" 60000");
        running = static_cast<pid_t>(peer.Id());
        EXPECT_EQ(WaitForSingleObject(ready, 60000), DWORD{WAIT_OBJECT_0});
    } // its handles are closed while it runs
    EXPECT_EQ(kill(running, 0), 0);
    const HANDLE go = CreateEventW(nullptr, TRUE, FALSE, UniqueName(L"go").c_str());
    SetEvent(go);
    for (int tries = 0; kill(running, 0) == 0 && tries < 600; ++tries)
    {
        Sleep(100);
    }
    EXPECT_NE(kill(running, 0), 0) << "a zombie still answers";
    CloseHandle(go);
    CloseHandle(ready);
}

TEST(ProcessOnLinux, ChildGetsNoFileSignalMaskOrHandlerOfOurs)
{
    const fs::path folder = fs::temp_directory_path() / UniqueName(L"child");
    fs::create_directories(folder);
    const int inherited = open("/dev/null", O_RDONLY); // without O_CLOEXEC
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    signal(SIGPIPE, SIG_IGN);
    {
        std::wstring line =
            L"sh -c \"ls -l /proc/self/fd > fds; grep -E 'SigBlk|SigIgn' /proc/self/status > signals\"";
        STARTUPINFOW startup = {};
        startup.dwFlags = STARTF_USESHOWWINDOW;
        PROCESS_INFORMATION information = {};
        ASSERT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                   folder.wstring().c_str(), &startup, &information));
        WaitForSingleObject(information.hProcess, 60000);
        CloseHandle(information.hThread);
        CloseHandle(information.hProcess);
    }
    signal(SIGPIPE, SIG_DFL);
    pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr);
    close(inherited);

    const std::string files = ReadFile(folder / "fds"); // of ls itself: 0, 1 (its output), 2, 3 (the folder)
    EXPECT_NE(files.find("0 -> /dev/null"), std::string::npos) << files;
    EXPECT_NE(files.find("2 -> /dev/null"), std::string::npos) << files;
    EXPECT_EQ(files.find(" 4 -> "), std::string::npos) << files;
    std::istringstream signals(ReadFile(folder / "signals"));
    for (const char* name : {"SigBlk:", "SigIgn:"})
    {
        std::string word;
        unsigned long long mask = ~0ULL;
        constexpr unsigned long long kStandardSignals = 0x7FFFFFFF; // those above are the C library's
        signals >> word >> std::hex >> mask;
        EXPECT_EQ(word, name);
        EXPECT_EQ(mask & kStandardSignals, 0U);
    }
    fs::remove_all(folder);
}

TEST(ProcessOnLinux, SaysWhatIsNoProgram)
{
    const fs::path folder = fs::temp_directory_path() / UniqueName(L"noprogram");
    fs::create_directories(folder);
    std::ofstream(folder / "plain") << "text";
    std::ofstream(folder / "runnable") << "text";
    fs::permissions(folder / "runnable", fs::perms::owner_all);
    const std::wstring path = folder.wstring();
    EXPECT_EQ(ErrorOfStart(path + L"/plain"), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(ErrorOfStart(path + L"/runnable"), DWORD{ERROR_BAD_EXE_FORMAT});
    EXPECT_EQ(ErrorOfStart(path), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(ErrorOfStart(path + L"/plain/x"), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(ErrorOfStart(L"\"\""), DWORD{ERROR_FILE_NOT_FOUND});
    fs::remove_all(folder);
}

TEST(SystemText, EveryByteSurvivesTheWayThereAndBack)
{
    struct Row
    {
        const char* bytes;
        const wchar_t* text;
    };
    const Row rows[] = {
        {"plain", L"plain"},
        {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", L"\u00E9\u20AC\U0001F600"},
        {"a\xE9z", L"a\xDCE9z"},                           // Latin-1
        {"\xC3", L"\xDCC3"},                               // cut
        {"\xC0\x80", L"\xDCC0\xDC80"},                     // overlong
        {"\xE0\x80\x80", L"\xDCE0\xDC80\xDC80"},           // overlong
        {"\xED\xA0\x80", L"\xDCED\xDCA0\xDC80"},           // a surrogate
        {"\xED\xB2\x80", L"\xDCED\xDCB2\xDC80"},           // the escape itself
        {"\xF4\x90\x80\x80", L"\xDCF4\xDC90\xDC80\xDC80"}, // beyond Unicode
        {"\xFF", L"\xDCFF"},
    };
    for (const Row& row : rows)
    {
        EXPECT_EQ(WideFromSystem(row.bytes), row.text);
        EXPECT_EQ(SystemFromWide(row.text), row.bytes);
    }
}

TEST(FindFileOnLinux, TellsLinksAndKeepsNamesThatAreNoUtf8)
{
    const fs::path folder = fs::temp_directory_path() / UniqueName(L"links");
    fs::create_directories(folder / "real");
    std::ofstream(folder / "caf\xE9") << "x";
    fs::create_symlink("real", folder / "to-folder");
    fs::create_symlink("caf\xE9", folder / "to-file");
    fs::create_symlink("nowhere", folder / "to-nothing");
    struct Row
    {
        const wchar_t* name;
        DWORD attributes;
        DWORD tag;
    };
    const Row rows[] = {
        {L"real", FILE_ATTRIBUTE_DIRECTORY, 0},
        {L"caf\xDCE9", FILE_ATTRIBUTE_NORMAL, 0},
        {L"to-folder", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT, IO_REPARSE_TAG_SYMLINK},
        {L"to-file", FILE_ATTRIBUTE_REPARSE_POINT, IO_REPARSE_TAG_SYMLINK},
        {L"to-nothing", FILE_ATTRIBUTE_REPARSE_POINT, IO_REPARSE_TAG_SYMLINK},
    };
    for (const Row& row : rows)
    {
        WIN32_FIND_DATAW data = {};
        const HANDLE find = FindFirstFileW((folder.wstring() + L"/" + row.name).c_str(), &data);
        ASSERT_NE(find, INVALID_HANDLE_VALUE) << SystemFromWide(row.name);
        EXPECT_EQ(data.cFileName, std::wstring(row.name));
        EXPECT_EQ(data.dwFileAttributes, row.attributes) << SystemFromWide(row.name);
        EXPECT_EQ(data.dwReserved0, row.tag);
        FindClose(find);
    }
    EXPECT_TRUE(DeleteFileW((folder.wstring() + L"/caf\xDCE9").c_str()));
    EXPECT_FALSE(fs::exists(folder / "caf\xE9"));
    fs::remove_all(folder);
}
