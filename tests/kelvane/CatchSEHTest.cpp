// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <thread>

// The faults are meant; a sanitizer would report them first.
#define TAVO_UNCHECKED                                                                                       \
    [[gnu::no_sanitize_address, gnu::no_sanitize_undefined, gnu::no_sanitize_thread, gnu::noinline]]

TAVO_UNCHECKED static void WriteToNull()
{
    volatile int* volatile place = nullptr;
    *place = 1;
}

TAVO_UNCHECKED static void DivideByZero()
{
    volatile int number = 0;
    number = 84 / number;
}

#if defined(__aarch64__)
#define TAVO_ILLEGAL "udf #0"
constexpr unsigned long kDivisionByZero = 0; // gives 0 there
#else
#define TAVO_ILLEGAL "ud2"
constexpr unsigned long kDivisionByZero = kFaultIntegerDivision;
#endif

using Fault = void (*)();

// What the fault became, 0 when it passed.
static unsigned long CodeOf(Fault fault)
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

TEST(CatchSEH, TurnsFaultsIntoExceptionsOnEveryThreadAtOnceNestedTimeAndAgain)
{
    const std::pair<Fault, unsigned long> faults[] = {
        {WriteToNull, kFaultAccessViolation},
        {DivideByZero, kDivisionByZero},
        {[] { __asm__ volatile(TAVO_ILLEGAL); }, kFaultIllegalInstruction},
        {[] {}, 0}};
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back(
            [&faults]
            {
                for (int times = 0; times < 50; ++times)
                    for (const auto& [fault, code] : faults)
                    {
                        const CatchSEH outer;
                        EXPECT_EQ(CodeOf(fault), code);
                    }
            });
}

TEST(CatchSEHDeathTest, LeavesOtherFaultsDeadly)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto fault = testing::Not(testing::HasSubstr("terminate called"));
    EXPECT_DEATH((CodeOf(WriteToNull), CodeOf(WriteToNull), WriteToNull()), fault);
    EXPECT_DEATH(CodeOf([] { std::thread(WriteToNull).join(); }), fault) << "the guard is another thread's";
    EXPECT_DEATH(CodeOf([] { raise(SIGSEGV); }), fault) << "sent, not met";
    if (!RunsOnWindows())
        EXPECT_DEATH(CodeOf([] { EXPECT_EQ(std::system("kill -SEGV $PPID"), 0); }), fault)
            << "by another process";
}
