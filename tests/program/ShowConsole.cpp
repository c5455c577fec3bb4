// SPDX-License-Identifier: MIT
// Prints what the program of this build shows when it is started with these arguments and closed again. With
// "--logs directory" in front it ships that directory's files.
#include "tests/support/ProgramFolder.h"

#include <cstdio>
#include <string_view>

int main(int argc, char** argv)
{
    const ProgramFolder folder;
    const bool ships = argc > 2 && std::string_view(argv[1]) == "--logs";
    ProgramStart start;
    start.arguments.assign(argv + (ships ? 3 : 1), argv + argc);
    if (ships)
    {
        const std::string logs = fs::absolute(argv[2]).generic_string();
        folder.Write("Tavo.settings.json", R"({"LogDirectory": ")" + logs + "\"}");
        start.awaited = "Successfully sent logs to Support";
        start.limit = std::chrono::seconds(200);
    }
    const ProgramOutcome outcome = folder.Run(start);
    std::fputs(outcome.console.c_str(), stdout);
    std::fprintf(stderr, "ended %d with %d\n", outcome.ended, outcome.exitCode);
    return outcome.ended ? 0 : 1;
}
