// SPDX-License-Identifier: MIT
#include "tests/support/AgentFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace
{

constexpr DWORD kLong = 60000; // ms, for what must come
constexpr DWORD kShort = 200;  // ms, for what must not

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
    EXPECT_EQ(WaitForSingleObject(event, kLong), DWORD{WAIT_OBJECT_0});
    CloseHandle(event);
    return process;
}

} // namespace

TEST(Event, StaysSetUntilOneResetUndoesAllSets)
{
    const HANDLE event = Create(UniqueName(L"stays"));
    EXPECT_EQ(WaitForSingleObject(event, 0), DWORD{WAIT_TIMEOUT});
    EXPECT_TRUE(SetEvent(event));
    EXPECT_TRUE(SetEvent(event));
    EXPECT_EQ(WaitForSingleObject(event, INFINITE), DWORD{WAIT_OBJECT_0});
    EXPECT_EQ(WaitForSingleObject(event, 0), DWORD{WAIT_OBJECT_0});
    EXPECT_TRUE(ResetEvent(event));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(WaitForSingleObject(event, kShort), DWORD{WAIT_TIMEOUT});
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(kShort - 20)); // Windows' clock ticks every 16 ms
    CloseHandle(event);
}

TEST(Event, SetReleasesAllThreadsThatWaitHoweverSoonTheResetFollows)
{
    const HANDLE event = Create(UniqueName(L"all"));
    std::atomic<int> released = 0;
    std::vector<std::jthread> threads;
    for (int index = 0; index < 4; ++index)
        threads.emplace_back([&] { released += WaitForSingleObject(event, kLong) == WAIT_OBJECT_0; });
    Sleep(kShort);
    SetEvent(event);
    ResetEvent(event);
    threads.clear();
    EXPECT_EQ(released, 4);
    CloseHandle(event);
}

TEST(NamedEvent, IsOneObjectUntilItsLastHandleIsClosed)
{
    const std::wstring name = UniqueName(L"one");
    EXPECT_FALSE(CloseHandle(nullptr)); // an error from before
    const HANDLE first = Create(L"Global\\" + name);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS}) << "creation clears what stood there";
    const HANDLE second = Create(L"Global\\" + name);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ALREADY_EXISTS});
    EXPECT_NE(first, second);
    SetEvent(first);
    EXPECT_EQ(WaitForSingleObject(second, 0), DWORD{WAIT_OBJECT_0});

    CloseHandle(first);
    EXPECT_TRUE(IsHeld(L"Global\\" + name));
    CloseHandle(second);
    EXPECT_FALSE(IsHeld(L"Global\\" + name));
    EXPECT_FALSE(IsHeld(L"Global\\" + name)) << "also when it was only looked at";
    const HANDLE fresh = Create(L"Global\\" + name);
    EXPECT_EQ(WaitForSingleObject(fresh, 0), DWORD{WAIT_TIMEOUT}) << "it was set";
    CloseHandle(fresh);
}

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
