// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

TEST(LockWaits, AreBookedByLabelFromAnyThread)
{
    std::vector<std::jthread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back(
            []
            {
                for (int wait = 0; wait < 1000; ++wait)
                    RecordLockWait(L"Queue", 50);
            });
    threads.clear();
    RecordLockWait(L"Catalogue", 4294967295);
    RecordLockWait(L"Catalogue", 5);
    RecordLockWait(L"None", 0);
    EXPECT_EQ(GetLockWaits(), L"Catalogue: 2 waits, 42949673.00 ms, longest 42949672.95 ms\n"
                              L"None: 1 waits, 0.00 ms, longest 0.00 ms\n"
                              L"Queue: 8000 waits, 4000.00 ms, longest 0.50 ms\n");
}

TEST(Timer, CountsHundredthsOfAMillisecond)
{
    const auto before = std::chrono::steady_clock::now();
    const std::int64_t start = TimerStart();
    EXPECT_NE(start, 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const DWORD elapsed = TimerEnd100thms(start);
    EXPECT_GE(elapsed, 4900u);
    EXPECT_LE(elapsed, (std::chrono::steady_clock::now() - before) / std::chrono::microseconds(10));
    EXPECT_EQ(TimerEnd100thms(TimerStart() + 1'000'000'000), 0u) << "not begun yet";
}
