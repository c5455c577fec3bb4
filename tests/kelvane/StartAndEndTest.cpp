// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"
#include "foundation/Veld.h"
#include "tests/kelvane/AgentFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>

using testing::HasSubstr;
using testing::Not;

namespace
{

TEST(Shutdown, IsLoggedWithItsReasonAndTheProgramThatRan)
{
    const AgentFolder folder;
    folder.Run({"init", "shutdown:finished"});
    EXPECT_THAT(folder.Log(), HasSubstr("Shutdown of application 2: finished\n"));
}

TEST(Shutdown, LogsTheBookOfLockWaitsWhereItWasKept)
{
    const AgentFolder folder;
    folder.Run({"init", "wait:queue", "shutdown:one"});
    EXPECT_THAT(folder.Log(), Not(HasSubstr("queue")));
    folder.Run({"set:RecordLockWaits:1"});
    folder.Run({"init", "wait:queue", "wait:map", "shutdown:two"});
    EXPECT_THAT(folder.Log(), HasSubstr("Lock wait: queue"));
    EXPECT_THAT(folder.Log(), HasSubstr("Lock wait: map"));
}

TEST(Listener, NeverHoldsUpOrCrashesTheEndOfTheProgram)
{
    const AgentFolder folder;
    // Told before it waits, while it waits, twice, or never: the thread may be anywhere when the process
    // ends.
    const std::vector<std::vector<std::string>> ways{
        {"init", "listen", "shutdown:a"},
        {"init", "shutdown:b", "listen"},
        {"init", "listen", "log:2:x", "shutdown:c", "shutdown:d"},
        {"init", "listen"}};
    for (int times = 0; times < 5; ++times)
        for (const auto& steps : ways)
        {
            const AgentOutcome outcome = folder.Run(steps, {{"TAVO_LOG_STATICS", "1"}});
            EXPECT_EQ(outcome.exitCode, 0);
            EXPECT_EQ(outcome.errors, "");
        }
}

TEST(Veld, NamesTheEventInTheNamespaceOfAllSessions)
{
    EXPECT_TRUE(std::wstring_view(FORCE_CORE_EVENT).starts_with(L"Global\\"));
}

} // namespace
