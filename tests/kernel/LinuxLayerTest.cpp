// SPDX-License-Identifier: MIT
// What of the layer shows only from the Linux side: users, signals, open files, names that are not UTF-8.
#include "foundation/OpenAccess.h"
#include "tests/support/AgentFolder.h"
#include "text/Unicode.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

TEST(HandleOnLinux, IsNeverUsedAgainOnceClosed)
{
    const HANDLE closed = CreateEventW(nullptr, TRUE, FALSE, UniqueName(L"closed").c_str());
    EXPECT_TRUE(CloseHandle(closed));
    const HANDLE next = CreateEventW(nullptr, TRUE, FALSE, UniqueName(L"next").c_str());
    EXPECT_NE(next, closed);
    EXPECT_EQ(WaitForSingleObject(closed, 0), DWORD{WAIT_FAILED});
    EXPECT_FALSE(SetEvent(closed) || ResetEvent(closed) || CloseHandle(closed));
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
        GTEST_SKIP() << "only root can become another user";
    const AgentFolder folder;
    const std::wstring name = UniqueName(L"users");
    const auto openAsNobody = [&] { return folder.Run({"open:" + text::ToUtf8(name)}, true).answers; };
    for (SECURITY_ATTRIBUTES* const attributes : {OpenAccessAttributes(), LPSECURITY_ATTRIBUTES{}})
    {
        const mode_t old = umask(0077); // has no say in it
        const HANDLE event = CreateEventW(attributes, FALSE, FALSE, (L"Global\\" + name).c_str());
        umask(old);
        EXPECT_EQ(openAsNobody(),
                  std::to_string(attributes != nullptr ? ERROR_ALREADY_EXISTS : ERROR_ACCESS_DENIED) + "\n");
        CloseHandle(event);
        EXPECT_EQ(openAsNobody(), "0\n") << "gone with its file, whoever made that";
    }
}

// Another account and lack of room are errors of the calls, never a signal.
TEST(NamedEventOfUsers, NobodyElseCanTakeItAwayOrMakeItFail)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can become another user";
    const std::wstring name = UniqueName(L"attacked");
    const HANDLE event = CreateEventW(OpenAccessAttributes(), TRUE, FALSE, name.c_str());
    SetEvent(event);
    const ChildProcess attacker(kAsNobody +
                                L"sh -c \"for i in $(ipcs -s | awk '/^0x/{print $2}'); do ipcrm -s $i; done; "
                                L"for i in $(ipcs -m | awk '/^0x/{print $2}'); do ipcrm -m $i; done; "
                                L"for f in /dev/shm/*; do truncate -s 0 $f; done; true\"");
    EXPECT_EQ(attacker.ExitCode(), 0U);
    EXPECT_EQ(WaitForSingleObject(event, 0), DWORD{WAIT_OBJECT_0});
    EXPECT_TRUE(ResetEvent(event));
    CloseHandle(event);

    const pid_t child = fork();
    if (child == 0)
    {
        const bool isOwn = unshare(CLONE_NEWIPC) == 0;
        std::ofstream("/proc/sys/kernel/sem") << "32000 1024000000 500 0"; // no set may be made
        const bool isMade = CreateEventW(OpenAccessAttributes(), TRUE, FALSE, name.c_str()) != nullptr;
        _exit(isOwn && !isMade && GetLastError() == ERROR_NOT_ENOUGH_MEMORY ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "neither an event nor the right error";
}

TEST(ProcessOnLinux, LeavesNoZombieWhenNobodyWaits)
{
    const AgentFolder folder;
    const std::wstring go = UniqueName(L"go");
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, go.c_str());
    // The handles are closed while it runs.
    const auto running = static_cast<pid_t>(folder.Start({"await:" + text::ToUtf8(go) + ":none"}).Id());
    EXPECT_EQ(kill(running, 0), 0);
    SetEvent(event);
    for (int tries = 0; kill(running, 0) == 0 && tries < 600; ++tries)
        Sleep(100);
    EXPECT_NE(kill(running, 0), 0) << "a zombie still answers";
    CloseHandle(event);
}

TEST(ProcessOnLinux, ChildGetsNoFileSignalMaskOrHandlerOfOurs)
{
    const TestFolder folder;
    const int inherited = open("/dev/null", O_RDONLY); // without O_CLOEXEC
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    signal(SIGPIPE, SIG_IGN);
    signal(SIGHUP, SIG_IGN); // as nohup(1) leaves it to this program, and to what that starts
    // Of ls itself: 0, 1 (its output), 2, 3 (the folder). Signals above 28 are the C library's.
    const ChildProcess shell(
        L"sh -c \"exec > seen; readlink /proc/self/fd/0 /proc/self/fd/2; ls /proc/self/fd; "
        L"sed -nE 's/(SigBlk|SigIgn):.*(.{7})$/\\1 \\2/p' /proc/self/status\"",
        folder.Path());
    shell.ExitCode();
    signal(SIGPIPE, SIG_DFL);
    signal(SIGHUP, SIG_DFL);
    pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr);
    close(inherited);
    EXPECT_EQ(folder.Read("seen"), "/dev/null\n/dev/null\n0\n1\n2\n3\nSigBlk 0000000\nSigIgn 0000001\n");
    const auto openFiles = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
    const auto before = openFiles();
    EXPECT_EQ(ChildProcess(L"true").ExitCode(), 0U);
    EXPECT_EQ(openFiles(), before);
    fs::create_symlink("/bin/sh", folder.Path() / "mine");
    const Variable path("PATH", folder.Path().c_str());
    EXPECT_EQ(ChildProcess(L"mine -c \"exit 7\"").ExitCode(), 7U);
}
