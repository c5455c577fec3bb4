// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"

#include <gmock/gmock.h>

#include <csignal>
#include <thread>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TAVO_UNCHECKED                                                                                       \
    [[gnu::no_sanitize_address, gnu::no_sanitize_undefined, gnu::no_sanitize_thread, gnu::noinline]]
#else
#define TAVO_UNCHECKED [[gnu::noinline]]
#endif

namespace
{

// The faults are meant; a sanitizer would report them first.
TAVO_UNCHECKED void WriteToNull()
{
    volatile int* volatile place = nullptr;
    *place = 1;
}

TAVO_UNCHECKED void DivideByZero()
{
    volatile int zero = 0;
    volatile int dividend = 84;
    volatile int result = dividend / zero;
    static_cast<void>(result);
}

void IllegalInstruction()
{
    __asm__ volatile("ud2");
}

using Fault = void (*)();

// What the fault became, 0 when it passed.
unsigned long CodeOf(Fault fault)
{
    const volatile Fault call = fault;
    const CatchSEH guard;
    try
    {
        call();
    }
    catch (const SEHException& exception)
    {
        EXPECT_STREQ(exception.what(), "hardware fault");
        return exception.Code();
    }
    return 0;
}

TEST(CatchSEH, TurnsFaultsIntoExceptionsTimeAndAgain)
{
    for (int times = 0; times < 3; ++times)
    {
        EXPECT_EQ(CodeOf(WriteToNull), kFaultAccessViolation);
        EXPECT_EQ(CodeOf(DivideByZero), kFaultIntegerDivision);
        EXPECT_EQ(CodeOf(IllegalInstruction), kFaultIllegalInstruction);
    }
    EXPECT_EQ(CodeOf([] {}), 0u);
}

TEST(CatchSEH, DestroysWhatLiesBetweenTheFaultAndTheHandler)
{
    static int alive = 0;
    struct Object
    {
        Object() { ++alive; }
        ~Object() { --alive; }
    };
    const Fault nested = []
    {
        const Object object;
        const volatile Fault call = WriteToNull;
        call();
    };
    EXPECT_EQ(CodeOf(nested), kFaultAccessViolation);
    EXPECT_EQ(alive, 0);
}

TEST(CatchSEH, WorksOnEveryThreadAtOnceAndNested)
{
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back(
            [thread]
            {
                for (int times = 0; times < 50; ++times)
                {
                    const CatchSEH outer;
                    EXPECT_EQ(CodeOf(thread % 2 == 0 ? WriteToNull : DivideByZero),
                              thread % 2 == 0 ? kFaultAccessViolation : kFaultIntegerDivision);
                }
            });
}

TEST(CatchSEHDeathTest, LeavesOtherFaultsDeadly)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const Fault others[] = {[]
                            {
                                CodeOf(WriteToNull);
                                const volatile Fault call = WriteToNull;
                                call();
                            },
                            []
                            {
                                const CatchSEH ofAnotherThread;
                                std::thread(WriteToNull).join();
                            },
                            []
                            {
                                const CatchSEH guard;
                                raise(SIGSEGV); // sent, not met
                            }};
    for (const Fault other : others)
        EXPECT_DEATH(other(), testing::Not(testing::HasSubstr("terminate called")));
}

} // namespace
