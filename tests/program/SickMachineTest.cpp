// SPDX-License-Identifier: MIT
// The program that ships on a machine that lacks something. scripts/check-faults tries far more of that.
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <span>

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

TEST(SickMachine, GetsAnAnswerToo)
{
    const std::string report = "Customer service: [^\n]*\n$";
    const std::pair<const char*, std::string> rows[] = {
        // An account with one thread, which root can make.
        {"prlimit --nproc=1 setpriv --reuid=64322 --regid=64322 --clear-groups $PROGRAM",
         "administrator of this computer.\nPress: OK\n$"},
        {"prlimit --stack=65536 $PROGRAM", report},
        {"$PROGRAM <&-", report},
        // Nobody reads any more.
        {"{ sleep 1; env --default-signal=PIPE $PROGRAM; echo $? >&2; } | true", "^0\n$"},
    };
    for (const auto& [command, answer] : std::span(rows).subspan(getuid() == 0 ? 0 : 1))
        EXPECT_THAT(Said(ProgramFolder(), command), testing::ContainsRegex(answer)) << command;
}
