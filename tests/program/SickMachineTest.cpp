// SPDX-License-Identifier: MIT
// The program that ships on a machine that lacks something. scripts/check-faults tries far more of that.
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>

#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

// Runs a command of the shell, in which "$PROGRAM" is the program; gives what it says, and its exit code
// where that is not 0.
static std::string Said(const ProgramFolder& folder, const std::string& command)
{
    fs::permissions(folder.Path(), fs::perms(0755));
    const fs::path said = folder.Path() / "said";
    const int status =
        std::system(("PROGRAM='" + folder.Program().string() + "' DISPLAY= WAYLAND_DISPLAY= && { " + command +
                     "; } </dev/null >'" + said.string() + "' 2>&1")
                        .c_str());
    return ReadFile(said) + (status == 0 ? "" : "ended with " + std::to_string(WEXITSTATUS(status)));
}

TEST(SickMachine, WithoutAThreadGetsAnAnswerToo)
{
    if (getuid() != 0)
        GTEST_SKIP() << "an account with one thread is made by root";
    EXPECT_THAT(Said(ProgramFolder(),
                     "prlimit --nproc=1 setpriv --reuid=64322 --regid=64322 --clear-groups $PROGRAM"),
                testing::EndsWith("administrator of this computer.\nPress: OK\n"));
}

TEST(SickMachine, WithLittleStackShowsTheReport)
{
    EXPECT_THAT(Said(ProgramFolder(), "prlimit --stack=65536 $PROGRAM"),
                testing::ContainsRegex("Customer service: [^\n]*\n$"));
}
