// SPDX-License-Identifier: MIT
// What of the layer shows only from the Linux side.
#include "foundation/OpenAccess.h"
#include "tests/support/AgentFolder.h"
#include "text/Unicode.h"

#include <gtest/gtest.h>

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

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

TEST(ProcessOnLinux, LeavesNoOpenFileAndNoZombieWhenNobodyWaits)
{
    const auto openFiles = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
    const auto before = openFiles();
    EXPECT_EQ(ChildProcess(L"/bin/true").ExitCode(), 0U);
    EXPECT_EQ(openFiles(), before);
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
