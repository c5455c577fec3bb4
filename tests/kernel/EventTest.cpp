// SPDX-License-Identifier: MIT
#include "tests/kernel/PeerProcess.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <chrono>
#include <thread>
#include <vector>

namespace
{

constexpr DWORD kLong = 60000; // ms, for what must come
constexpr DWORD kShort = 200;  // ms, for what must not

HANDLE Create(const std::wstring& name, bool manualReset = true)
{
    return CreateEventW(nullptr, manualReset, FALSE, name.c_str());
}

// Whether somebody holds the name; holds it no longer itself.
bool IsHeld(const std::wstring& name)
{
    const HANDLE event = Create(name);
    const DWORD error = GetLastError();
    CloseHandle(event);
    return error == ERROR_ALREADY_EXISTS;
}

// A peer that waits for `name`, and does so already.
class WaitingPeer : public PeerProcess
{
public:
    explicit WaitingPeer(const std::wstring& name) : WaitingPeer(name, UniqueName(L"ready")) {}

private:
    WaitingPeer(const std::wstring& name, const std::wstring& ready) : WaitingPeer(name, ready, Create(ready))
    {
    }
    WaitingPeer(const std::wstring& name, const std::wstring& ready, HANDLE event)
        : PeerProcess(L"wait " + name + L" " + ready + L" 60000")
    {
        EXPECT_EQ(WaitForSingleObject(event, kLong), DWORD{WAIT_OBJECT_0});
        CloseHandle(event);
        Sleep(kShort); // ready is said just before the wait begins
    }
};

} // namespace

TEST(Event, ManualResetStaysSetUntilOneResetUndoesAllSets)
{
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    EXPECT_EQ(WaitForSingleObject(event, 0), DWORD{WAIT_TIMEOUT});
    EXPECT_TRUE(SetEvent(event));
    EXPECT_TRUE(SetEvent(event));
    EXPECT_EQ(WaitForSingleObject(event, 0), DWORD{WAIT_OBJECT_0});
    EXPECT_EQ(WaitForSingleObject(event, INFINITE), DWORD{WAIT_OBJECT_0});
    EXPECT_TRUE(ResetEvent(event));
    EXPECT_EQ(WaitForSingleObject(event, 0), DWORD{WAIT_TIMEOUT});
    CloseHandle(event);
}

TEST(Event, AutoResetIsUsedUpByOneWait)
{
    const HANDLE event = CreateEventW(nullptr, FALSE, TRUE, nullptr); // set from the start
    EXPECT_EQ(WaitForSingleObject(event, 0), DWORD{WAIT_OBJECT_0});
    EXPECT_EQ(WaitForSingleObject(event, 0), DWORD{WAIT_TIMEOUT});
    CloseHandle(event);
}

TEST(Event, WaitEndsAtItsTimeAndNotBefore)
{
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(WaitForSingleObject(event, kShort), DWORD{WAIT_TIMEOUT});
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(kShort - 20)); // Windows' clock ticks every 16 ms
    CloseHandle(event);
}

TEST(Event, SetReleasesAllThreadsThatWaitHoweverSoonTheResetFollows)
{
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::atomic<int> released = 0;
    std::vector<std::jthread> threads;
    for (int index = 0; index < 4; ++index)
    {
        threads.emplace_back([&] { released += WaitForSingleObject(event, kLong) == WAIT_OBJECT_0; });
    }
    Sleep(kShort);
    SetEvent(event);
    ResetEvent(event);
    threads.clear();
    EXPECT_EQ(released, 4);
    CloseHandle(event);
}

TEST(Event, HandlesThatAreNoneOfItsKindAreFoundOut)
{
    WIN32_FIND_DATAW data;
    const HANDLE find = FindFirstFileW((FolderOfThisProgram() / L"*").wstring().c_str(), &data);
    const HANDLE made = reinterpret_cast<HANDLE>(static_cast<ULONG_PTR>(0x123450));
    for (const HANDLE handle : {find, made, static_cast<HANDLE>(nullptr)})
    {
        EXPECT_FALSE(SetEvent(handle));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
        EXPECT_FALSE(ResetEvent(handle));
        EXPECT_EQ(WaitForSingleObject(handle, 0), DWORD{WAIT_FAILED});
    }
    EXPECT_TRUE(FindClose(find));
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
}

TEST(NamedEvent, BeginsAnewWhenNobodyHoldsItAndKeepsItsKindWhileSomebodyDoes)
{
    const std::wstring name = UniqueName(L"anew");
    const HANDLE set = Create(name);
    SetEvent(set);
    CloseHandle(set);
    const HANDLE fresh = Create(name, false);
    EXPECT_EQ(WaitForSingleObject(fresh, 0), DWORD{WAIT_TIMEOUT});
    const HANDLE opened =
        CreateEventW(nullptr, TRUE, TRUE, name.c_str()); // state and kind are not its to say
    EXPECT_EQ(WaitForSingleObject(opened, 0), DWORD{WAIT_TIMEOUT});
    SetEvent(opened);
    EXPECT_EQ(WaitForSingleObject(opened, 0), DWORD{WAIT_OBJECT_0});
    EXPECT_EQ(WaitForSingleObject(opened, 0), DWORD{WAIT_TIMEOUT}) << "still the auto-reset one";
    CloseHandle(opened);
    CloseHandle(fresh);
}

TEST(NamedEvent, NamesDifferByCaseAndHoldNoOtherBackslash)
{
    const HANDLE lower = Create(UniqueName(L"case"));
    EXPECT_FALSE(IsHeld(UniqueName(L"CASE")));
    CloseHandle(lower);
    EXPECT_EQ(Create(L"Other\\" + UniqueName(L"x")), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST(NamedEvent, NameIsGoneWhenItsLastHolderIsKilled)
{
    const std::wstring name = UniqueName(L"killed");
    const WaitingPeer peer(name);
    EXPECT_TRUE(IsHeld(name));
    const HANDLE own = Create(name);
    peer.Kill();
    EXPECT_TRUE(IsHeld(name)) << "there is another holder";
    CloseHandle(own);
    EXPECT_FALSE(IsHeld(name));

    const WaitingPeer alone(name);
    EXPECT_TRUE(IsHeld(name));
    alone.Kill();
    EXPECT_FALSE(IsHeld(name));
}

TEST(NamedEvent, NameIsGoneWhenItsHolderEnds)
{
    const std::wstring name = UniqueName(L"ended");
    const PeerProcess peer(L"open " + name);
    EXPECT_EQ(peer.ExitCode(), DWORD{ERROR_SUCCESS});
    EXPECT_FALSE(IsHeld(name));
}

TEST(NamedEvent, SetReleasesAllProcessesThatWait)
{
    const std::wstring name = UniqueName(L"released");
    const HANDLE event = Create(name);
    const WaitingPeer first(name);
    const WaitingPeer second(name);
    EXPECT_TRUE(first.IsRunning() && second.IsRunning());
    SetEvent(event);
    EXPECT_EQ(first.ExitCode(), 0U);
    EXPECT_EQ(second.ExitCode(), 0U);
    CloseHandle(event);
}

TEST(NamedEvent, AutoResetReleasesOneProcessForEachSet)
{
    const std::wstring name = UniqueName(L"auto");
    const HANDLE event = Create(name, false);
    const WaitingPeer first(name);
    const WaitingPeer second(name);
    SetEvent(event);
    Sleep(1000);
    EXPECT_NE(first.IsRunning(), second.IsRunning());
    SetEvent(event);
    EXPECT_EQ(first.ExitCode(), 0U);
    EXPECT_EQ(second.ExitCode(), 0U);
    CloseHandle(event);
}

// std::barrier waits on an atomic, and waiters on one can miss their wake-up with this compiler's Windows
// library.
class MeetingPoint
{
public:
    explicit MeetingPoint(int threads) : mThreads(threads) {}

    void Meet()
    {
        std::unique_lock lock(mGuard);
        const int round = mRound;
        if (++mCome == mThreads)
        {
            mCome = 0;
            ++mRound;
            mAllCame.notify_all();
        }
        mAllCame.wait(lock, [&] { return mRound != round; });
    }

private:
    const int mThreads;
    std::mutex mGuard;
    std::condition_variable mAllCame;
    int mCome = 0;
    int mRound = 0;
};

TEST(NamedEvent, OfAllWhoCreateItAtOnceExactlyOneIsTheFirst)
{
    constexpr int kThreads = 4;
    constexpr int kRounds = 200;
    const std::wstring name = UniqueName(L"race");
    std::atomic<int> firsts = 0;
    MeetingPoint all(kThreads);
    std::vector<std::jthread> threads;
    for (int index = 0; index < kThreads; ++index)
    {
        threads.emplace_back(
            [&]
            {
                for (int round = 0; round < kRounds; ++round)
                {
                    const HANDLE event = Create(name);
                    firsts += event != nullptr && GetLastError() == ERROR_SUCCESS;
                    all.Meet();
                    CloseHandle(event); // the next round begins while others still close
                    if (round % 2 == 0)
                    {
                        all.Meet();
                    }
                }
            });
    }
    threads.clear();
    EXPECT_GE(firsts, kRounds / 2) << "after every other round the name is surely gone";
    EXPECT_LE(firsts, kRounds);
}
