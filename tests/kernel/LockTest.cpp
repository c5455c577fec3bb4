// SPDX-License-Identifier: MIT
#include <windows.h>

#include <process.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace
{

constexpr DWORD kSpinCount = 4000;

struct StartedThread
{
    HANDLE mDone;
    DWORD mId;
};

void __cdecl RecordThread(void* argument)
{
    auto* thread = static_cast<StartedThread*>(argument);
    thread->mId = GetCurrentThreadId();
    SetEvent(thread->mDone);
}

} // namespace

TEST(CriticalSection, GuardsACounterThatRacesWithoutIt)
{
    constexpr int kThreads = 4;
    constexpr int kTimes = 20000;
    CRITICAL_SECTION section;
    ASSERT_TRUE(InitializeCriticalSectionAndSpinCount(&section, kSpinCount));
    long counter = 0;
    std::vector<std::jthread> threads;
    for (int index = 0; index < kThreads; ++index)
    {
        threads.emplace_back(
            [&]
            {
                for (int time = 0; time < kTimes; ++time)
                {
                    EnterCriticalSection(&section);
                    EnterCriticalSection(&section); // re-entrant
                    ++counter;
                    LeaveCriticalSection(&section);
                    ++counter; // still held
                    LeaveCriticalSection(&section);
                }
            });
    }
    threads.clear();
    EXPECT_EQ(counter, 2L * kThreads * kTimes);
    DeleteCriticalSection(&section);
}

TEST(Thread, RunsWithItsArgumentUnderAnIdOfItsOwn)
{
    StartedThread thread = {CreateEventW(nullptr, TRUE, FALSE, nullptr), 0};
    EXPECT_NE(_beginthread(RecordThread, 0, &thread), static_cast<std::uintptr_t>(-1));
    EXPECT_EQ(WaitForSingleObject(thread.mDone, 60000), DWORD{WAIT_OBJECT_0});
    EXPECT_NE(thread.mId, 0U);
    EXPECT_NE(thread.mId, GetCurrentThreadId());
    CloseHandle(thread.mDone);
}

TEST(Clock, TicksCountTheMillisecondsOfASleep)
{
    const DWORD start = GetTickCount();
    Sleep(300);
    const DWORD passed = GetTickCount() - start;
    EXPECT_GE(passed, 280U);
    EXPECT_LT(passed, 5000U);
}

TEST(LastError, BelongsToItsThread)
{
    std::atomic<bool> done = false;
    EXPECT_NE(CreateEventW(nullptr, TRUE, FALSE, nullptr), nullptr); // clears it
    const std::jthread other(
        [&]
        {
            EXPECT_FALSE(CloseHandle(nullptr));
            EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
            done = true;
        });
    while (!done)
    {
        std::this_thread::yield();
    }
    EXPECT_NE(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}
