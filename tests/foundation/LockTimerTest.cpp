// SPDX-License-Identifier: MIT
// When a lock asks the timer and when it books a wait. The timer and the book are this program's own, which
// Oriska is not linked to.
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
    // Why, the switch, the label, the timer's mark and wait, the calls.
    const std::tuple<const char*, bool, const wchar_t*, std::int64_t, DWORD, std::vector<std::string>>
        kCases[] = {
            {"the switch is off", false, L"Queue", 7, 9, {}},
            {"the lock has no label", true, nullptr, 7, 9, {}},
            {"no mark was given", true, L"Queue", 0, 9, {"start"}},
            {"there was no wait", true, L"Queue", 7, 0, {"start", "end 7"}},
            {"the shortest wait", true, L"Queue", 7, 1, {"start", "end 7", "record 1"}},
            {"a mark may be negative", true, L"Queue", -7, 9, {"start", "end -7", "record 9"}},
        };
    for (const auto& [why, record, label, mark, wait, calls] : kCases)
    {
        SCOPED_TRACE(why);
        CLockCS lock;
        gLock = &lock;
        lock.mLabel = label;
        gbRecordLockWaits = record;
        gMark = mark;
        gWait = wait;
        gCalls.clear();
        {
            const CAcquireCS acquired(lock);
            EXPECT_EQ(acquired.mHeld, 1u);
        }
        EXPECT_EQ(gCalls, calls);
    }
}

TEST(LockTimer, IsNotReadForALockThatIsPassedOver)
{
    alignas(CLockCS) static std::byte storage[sizeof(CLockCS)];
    auto* const lock = reinterpret_cast<CLockCS*>(storage); // not made yet
    lock->mLabel = L"Queue";
    gbRecordLockWaits = true;
    gMark = 7;
    gCalls.clear();
    const CAcquireCS acquired(*lock);
    EXPECT_EQ(gCalls, std::vector<std::string>{"start"});
}
