// SPDX-License-Identifier: MIT
// When a lock asks the timer and books a wait: both are this program's own, without Oriska.
#define ORISKA_STATIC_DEFINE
#include "foundation/Locks.h"

#include <gtest/gtest.h>

static CLockCS* gLock = nullptr;
static std::int64_t gMark = 0;
static DWORD gWait = 0;
static std::vector<std::string> gCalls;

bool gbRecordLockWaits = false;

std::int64_t TimerStart()
{
    gCalls.push_back("start");
    return gMark;
}

DWORD TimerEnd100thms(std::int64_t start)
{
    gCalls.push_back("end " + std::to_string(start));
    return gWait;
}

void RecordLockWait(const wchar_t* label, DWORD wait)
{
    EXPECT_STREQ(label, L"Queue");
    EXPECT_EQ(gLock->mOwnerThread, 0u) << "the owner is noted last";
    gCalls.push_back("record " + std::to_string(wait));
}

TEST(LockTimer, IsAskedOnlyWhereAWaitCanBeBooked)
{
    // Why, whether the lock is made, the switch, the label, the timer's mark and wait, the calls.
    using Calls = std::vector<std::string>;
    const std::tuple<const char*, bool, bool, const wchar_t*, std::int64_t, DWORD, Calls> kCases[] = {
        {"the switch is off", true, false, L"Queue", 7, 9, {}},
        {"the lock has no label", true, true, nullptr, 7, 9, {}},
        {"no mark was given", true, true, L"Queue", 0, 9, {"start"}},
        {"there was no wait", true, true, L"Queue", 7, 0, {"start", "end 7"}},
        {"the shortest wait", true, true, L"Queue", 7, 1, {"start", "end 7", "record 1"}},
        {"a mark may be negative", true, true, L"Queue", -7, 9, {"start", "end -7", "record 9"}},
        {"the lock is passed over", false, true, L"Queue", 7, 9, {"start"}},
    };
    for (const auto& [why, made, record, label, mark, wait, calls] : kCases)
    {
        SCOPED_TRACE(why);
        CLockCS lock;
        gLock = &lock;
        lock.mLabel = label;
        lock.mState = made ? 16 : 0;
        gbRecordLockWaits = record;
        gMark = mark;
        gWait = wait;
        gCalls.clear();
        EXPECT_EQ(CAcquireCS(lock).mHeld, made ? 1u : 0u);
        EXPECT_EQ(gCalls, calls);
    }
}
