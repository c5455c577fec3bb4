// SPDX-License-Identifier: MIT
#include <windows.h>

#include <process.h>

#include <gtest/gtest.h>

namespace
{

struct StartedThread
{
    HANDLE mDone;
    DWORD mId;
    DWORD mError;
};

void __cdecl RecordThread(void* argument)
{
    auto* thread = static_cast<StartedThread*>(argument);
    thread->mId = GetCurrentThreadId();
    EXPECT_FALSE(CloseHandle(nullptr));
    thread->mError = GetLastError();
    SetEvent(thread->mDone);
}

} // namespace

TEST(Thread, RunsWithItsArgumentUnderAnIdAndALastErrorOfItsOwn)
{
    StartedThread thread = {CreateEventW(nullptr, TRUE, FALSE, UniqueName(L"thread").c_str()), 0,
                            0}; // which clears our last error
    EXPECT_NE(_beginthread(RecordThread, 0, &thread), static_cast<std::uintptr_t>(-1));
    EXPECT_EQ(WaitForSingleObject(thread.mDone, 60000), DWORD{WAIT_OBJECT_0});
    EXPECT_NE(thread.mId, 0U);
    EXPECT_NE(thread.mId, GetCurrentThreadId());
    EXPECT_EQ(thread.mError, DWORD{ERROR_INVALID_HANDLE});
    EXPECT_NE(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    CloseHandle(thread.mDone);
}

TEST(Clock, TicksCountTheMillisecondsOfASleep)
{
    const DWORD start = GetTickCount();
    Sleep(300);
    const DWORD passed = GetTickCount() - start;
    // Wine's ticks come from its server, which lags on a busy machine.
    EXPECT_GE(passed, 200U);
    EXPECT_LT(passed, 5000U);
}
