// SPDX-License-Identifier: MIT
#include "foundation/Locks.h"

#include <gtest/gtest.h>

#include <thread>

TEST(Locks, KnowTheirOwnerAndTheLastOne)
{
    CLockCS lock;
    EXPECT_EQ(lock.mState, 16u);
    EXPECT_EQ(lock.mLabel, nullptr);
    CAcquireCS acquired(lock);
    EXPECT_EQ(acquired.mHeld, 1u);
    EXPECT_EQ(lock.mOwnerThread, GetCurrentThreadId());
    EXPECT_EQ(lock.mLastOwnerThread, 0u);
    acquired.Release();
    EXPECT_EQ(acquired.mHeld, 0u);
    EXPECT_EQ(lock.mOwnerThread, 0u);
    EXPECT_EQ(lock.mLastOwnerThread, GetCurrentThreadId());
    acquired.Release();
    // Free for others, though the holder still lives.
    std::thread([&lock] { const CAcquireCS held(lock); }).join();
    EXPECT_NE(lock.mLastOwnerThread, GetCurrentThreadId());
}

TEST(Locks, CanBeTakenAgainByTheirOwner)
{
    CLockCS lock;
    std::atomic<bool> entered = false;
    std::thread other;
    {
        const CAcquireCS outer(lock);
        EXPECT_EQ(CAcquireCS(lock).mHeld, 1u);
        other = std::thread([&] { entered = CAcquireCS(lock).mHeld == 1; });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_FALSE(entered) << "the inner holder has let go for the outer one";
    }
    other.join();
    EXPECT_TRUE(entered);
}

TEST(Locks, ArePassedOverBeforeTheyAreMadeAndAfterTheyAreGone)
{
    // As a static object's memory is before its constructor runs.
    alignas(CLockCS) static std::byte storage[sizeof(CLockCS)];
    auto* const lock = reinterpret_cast<CLockCS*>(storage);
    const auto passedOver = [lock]
    {
        CAcquireCS first(*lock);
        const CAcquireCS second(*lock);
        EXPECT_EQ(first.mHeld, 0u);
        EXPECT_EQ(first.mAcquiredCS, nullptr);
        first.Release();
    };
    EXPECT_EQ(lock->mState, 0u);
    passedOver();
    std::construct_at(lock);
    EXPECT_EQ(CAcquireCS(*lock).mHeld, 1u);
    std::destroy_at(lock);
    EXPECT_EQ(lock->mState, 32u);
    passedOver();
    std::thread(passedOver).join();
}
