// SPDX-License-Identifier: MIT
// Prints what the program of this build shows when it is started with the arguments given and closed again:
// for comparing the two systems on one machine.
#include "tests/support/ProgramFolder.h"

#include <cstdio>

int main(int argc, char** argv)
{
    const ProgramFolder folder;
    const ProgramOutcome outcome = folder.Run({{argv + 1, argv + argc}, {}, {}});
    std::fputs(outcome.console.c_str(), stdout);
    return outcome.ended ? 0 : 1;
}
