// SPDX-License-Identifier: MIT
#include "tests/support/AgentFolder.h"

#include <gmock/gmock.h>

using namespace testing;

TEST(Shutdown, IsLoggedWithTheBookOfLockWaitsWhereItWasKept)
{
    const AgentFolder folder;
    folder.Run({"init", "wait:queue", "shutdown:one"});
    EXPECT_THAT(folder.Log(), HasSubstr("Shutdown of application 2: one\n"));
    EXPECT_THAT(folder.Log(), Not(HasSubstr("queue")));
    folder.Run({"set:RecordLockWaits:1"});
    folder.Run({"init", "wait:queue", "wait:map", "shutdown:two"});
    EXPECT_THAT(folder.Log(), HasSubstr("Lock wait: queue"));
    EXPECT_THAT(folder.Log(), HasSubstr("Lock wait: map"));
}

TEST(Listener, NeverHoldsUpOrCrashesTheEndOfTheProgram)
{
    const AgentFolder folder;
    // Told before it waits, while it waits, twice, or never: it may be anywhere when the process ends.
    const std::vector<std::vector<std::string>> ways{
        {"init", "statics", "listen", "shutdown:a"},
        {"init", "statics", "shutdown:b", "listen"},
        {"init", "statics", "listen", "log:2:x", "shutdown:c", "shutdown:d"},
        {"init", "statics", "listen"}};
    for (int times = 0; times < 5; ++times)
        for (const auto& steps : ways)
        {
            const AgentOutcome outcome = folder.Run(steps);
            EXPECT_EQ(outcome.exitCode, 0u);
            EXPECT_EQ(outcome.errors, "");
        }
}
