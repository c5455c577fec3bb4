// SPDX-License-Identifier: MIT
// The product's lock and its scoped acquisition. The lock is re-entrant for its owner. A lock that is not
// usable yet, or no longer, is passed over: code that runs before a static lock is constructed or after it
// was destroyed goes on without it.
#pragma once

#include "foundation/Oriska.h"

#include <windows.h>

#include <atomic>

// The values of CLockCS::mState. A static object begins as zeros, so 0 also stands for "not constructed yet".
constexpr DWORD kLockUnderConstruction = 0;
constexpr DWORD kLockUsable = 16;
constexpr DWORD kLockDestroyed = 32;

class CLockCS
{
public:
    CLockCS()
    {
        SetState(kLockUnderConstruction);
        constexpr DWORD kSpinCount = 4000;
        InitializeCriticalSectionAndSpinCount(&mCS, kSpinCount);
        SetState(kLockUsable);
    }
    virtual ~CLockCS()
    {
        DeleteCriticalSection(&mCS);
        SetState(kLockDestroyed);
    }
    CLockCS(const CLockCS&) = delete;
    CLockCS& operator=(const CLockCS&) = delete;

    bool IsUsable() { return std::atomic_ref(mState).load(std::memory_order_acquire) == kLockUsable; }

    CRITICAL_SECTION mCS;
    DWORD mOwnerThread = 0;          // 0 when free; as the last one, guarded by the lock itself
    DWORD mLastOwnerThread = 0;      // the last thread that held the lock
    const wchar_t* mLabel = nullptr; // name under which waits are recorded; null: none are
    DWORD mState;                    // read and written as an atomic, also outside the object's lifetime

private:
    void SetState(DWORD state) { std::atomic_ref(mState).store(state, std::memory_order_release); }
};

// Holds a lock from construction to destruction, or to an earlier Release. It belongs to one thread.
class CAcquireCS
{
public:
    // The lock may be one that is not made yet, or gone: that is what its state is for.
    __attribute__((no_sanitize("vptr"))) explicit CAcquireCS(CLockCS& lock)
        : mLockObject(&lock), mAcquiredCS(lock.IsUsable() ? &lock.mCS : nullptr)
    {
        const bool record = gbRecordLockWaits && lock.mLabel != nullptr;
        const std::int64_t start = record ? TimerStart() : 0;
        if (mAcquiredCS == nullptr)
            return;
        EnterCriticalSection(mAcquiredCS);
        mHeld = 1;
        if (start != 0)
            if (const DWORD wait = TimerEnd100thms(start); wait != 0)
                RecordLockWait(lock.mLabel, wait);
        lock.mOwnerThread = GetCurrentThreadId();
    }
    virtual ~CAcquireCS() { Release(); }
    CAcquireCS(const CAcquireCS&) = delete;
    CAcquireCS& operator=(const CAcquireCS&) = delete;

    // Does nothing when the lock is not held through this object.
    void Release()
    {
        if (mHeld == 0)
            return;
        mHeld = 0;
        mLockObject->mLastOwnerThread = mLockObject->mOwnerThread;
        mLockObject->mOwnerThread = 0;
        LeaveCriticalSection(mAcquiredCS);
    }

    CLockCS* mLockObject;
    CRITICAL_SECTION* mAcquiredCS; // null when the lock was not usable
    DWORD mHeld = 0;               // 1 while held
};
