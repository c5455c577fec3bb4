// SPDX-License-Identifier: MIT
#include "tests/support/AgentFolder.h"

#include <gtest/gtest.h>

#include <thread>

namespace
{

HANDLE Create(const std::wstring& name)
{
    return CreateEventW(nullptr, TRUE, FALSE, name.c_str());
}

} // namespace

TEST(NamedEvent, IsGoneAsItWasSetWithItsLastHolderThoughThatIsKilled)
{
    const AgentFolder folder;
    const std::wstring name = UniqueName(L"killed");
    const HANDLE own = Create(name);
    // Which sets it, and waits.
    const ChildProcess holder =
        folder.Start({"await:" + fs::path(UniqueName(L"never")).string() + ":" + fs::path(name).string()});
    EXPECT_EQ(WaitForSingleObject(own, 60'000), DWORD{WAIT_OBJECT_0});
    CloseHandle(own);
    EXPECT_TRUE(IsHeld(name)) << "there is another holder";
    holder.Kill();
    const HANDLE fresh = Create(name);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    std::thread([] { CloseHandle(nullptr); }).join();
    EXPECT_NE(GetLastError(), DWORD{ERROR_INVALID_HANDLE}) << "another thread's";
    EXPECT_EQ(WaitForSingleObject(fresh, 0), DWORD{WAIT_TIMEOUT});
    CloseHandle(fresh);
}

TEST(NamedEvent, OfAllWhoCreateItAtOnceExactlyOneIsTheFirst)
{
    constexpr int kThreads = 4;
    constexpr int kRounds = 200;
    const std::wstring name = UniqueName(L"race");
    std::atomic<int> firsts = 0;
    // In place of std::barrier, which now and then waits for ever in MinGW's library.
    std::atomic<int> arrived = 0;
    const auto meet = [&arrived](int time)
    {
        for (++arrived; arrived < kThreads * time;)
            std::this_thread::yield();
    };
    std::vector<std::jthread> threads;
    for (int index = 0; index < kThreads; ++index)
        threads.emplace_back(
            [&]
            {
                for (int round = 0, time = 0; round < kRounds; ++round)
                {
                    const HANDLE event = Create(name);
                    firsts += event != nullptr && GetLastError() == ERROR_SUCCESS;
                    meet(++time);
                    CloseHandle(event); // the next round begins while others still close
                    if (round % 2 == 0)
                        meet(++time);
                }
            });
    threads.clear();
    EXPECT_GE(firsts, kRounds / 2) << "after every other round the name is surely gone";
    EXPECT_LE(firsts, kRounds);
}
