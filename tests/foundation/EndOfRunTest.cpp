// SPDX-License-Identifier: MIT
#include "foundation/EndOfRun.h"

#include <gtest/gtest.h>

#include <optional>
#include <thread>

using namespace std::chrono_literals;

TEST(EndOfRun, WaitsForTheStepInHandDoesAllActionsNewestFirstAndLetsNobodyPass)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto run = []
    {
        {
            const AtEndOfRun gone([] { std::fputs("gone ", stderr); });
        }
        const AtEndOfRun oldest(
            []
            {
                std::this_thread::sleep_for(200ms);
                std::fputs("oldest.", stderr);
                std::_Exit(3);
            });
        const AtEndOfRun newest([] { std::fputs("newest ", stderr); });
        std::optional<EndOfRunWaits> step(std::in_place);
        std::jthread end([] { EndRun(L"a test"); });
        std::this_thread::sleep_for(200ms);
        std::fputs("step ", stderr);
        step.reset();
        std::this_thread::sleep_for(100ms);
        const EndOfRunWaits next;
        std::fputs("next ", stderr);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(3), "^step newest oldest\\.$");
}
