// SPDX-License-Identifier: MIT
#include "tests/support/TestFolder.h"

#include <windows.h>

#include <process.h>

#include <gtest/gtest.h>

TEST(Thread, RunsWithItsArgumentUnderAnIdAndALastErrorOfItsOwn)
{
    struct Started
    {
        HANDLE done;
        DWORD id = 0;
    } started = {CreateEventW(nullptr, TRUE, FALSE, UniqueName(L"thread").c_str())}; // clears our last error
    const auto run = [](void* argument) __cdecl
    {
        auto& thread = *static_cast<Started*>(argument);
        thread.id = GetCurrentThreadId();
        CloseHandle(nullptr); // which fails
        SetEvent(thread.done);
    };
    EXPECT_NE(_beginthread(run, 0, &started), static_cast<std::uintptr_t>(-1));
    EXPECT_EQ(WaitForSingleObject(started.done, 60000), DWORD{WAIT_OBJECT_0});
    EXPECT_NE(started.id, 0U);
    EXPECT_NE(started.id, GetCurrentThreadId());
    EXPECT_NE(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    CloseHandle(started.done);
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
