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

// A process that holds `name` and `ready`, which it has set.
ChildProcess Holder(const AgentFolder& folder, const std::wstring& name,
                    const std::wstring& ready = UniqueName(L"ready"))
{
    const HANDLE event = Create(ready);
    ChildProcess process =
        folder.Start({"await:" + fs::path(name).string() + ":" + fs::path(ready).string()});
    EXPECT_EQ(WaitForSingleObject(event, 60'000), DWORD{WAIT_OBJECT_0});
    CloseHandle(event);
    return process;
}

} // namespace

TEST(NamedEvent, NameIsGoneWhenItsLastHolderIs)
{
    const AgentFolder folder;
    const std::wstring name = UniqueName(L"killed");
    const ChildProcess holder = Holder(folder, name);
    const HANDLE own = Create(name);
    holder.Kill();
    EXPECT_TRUE(IsHeld(name)) << "there is another holder";
    CloseHandle(own);
    EXPECT_FALSE(IsHeld(name));

    Holder(folder, UniqueName(L"other"), name).Kill();
    const HANDLE fresh = Create(name);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(WaitForSingleObject(fresh, 0), DWORD{WAIT_TIMEOUT});
    CloseHandle(fresh);

    EXPECT_EQ(folder.Run({"open:" + fs::path(name).string()}).answers, "0\n")
        << "and ends without closing it";
    EXPECT_FALSE(IsHeld(name));
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
