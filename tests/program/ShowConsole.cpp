// SPDX-License-Identifier: MIT
// Prints what the program of this build shows when it is started with these arguments and closed again. With
// "--logs directory" in front it ships that directory's files, and names what it has left of them.
#include "tests/support/ProgramFolder.h"

#include <cstdio>
#include <string_view>

// With the files' ages, which decide what is shipped.
static void CopyTree(const fs::path& from, const fs::path& to)
{
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(from))
    {
        if (!entry.is_regular_file())
            continue;
        const fs::path copy = to / fs::relative(entry.path(), from);
        fs::create_directories(copy.parent_path());
        fs::copy_file(entry.path(), copy);
        fs::last_write_time(copy, entry.last_write_time());
    }
}

int main(int argc, char** argv)
{
    const ProgramFolder folder;
    const bool ships = argc > 2 && std::string_view(argv[1]) == "--logs";
    ProgramStart start;
    start.arguments.assign(argv + (ships ? 3 : 1), argv + argc);
    if (ships)
    {
        CopyTree(argv[2], folder.Path() / "Logs");
        start.awaited = "Successfully sent logs to Support";
        start.limit = std::chrono::seconds(200);
    }
    const ProgramOutcome outcome = folder.Run(start);
    std::fputs(outcome.console.c_str(), stdout);
    if (ships)
        for (const fs::directory_entry& entry : fs::directory_iterator(folder.Path() / "Logs"))
            std::printf("left: %s\n", entry.path().filename().string().c_str());
    std::fprintf(stderr, "ended %d with %d\n", outcome.ended, outcome.exitCode);
    return outcome.ended ? 0 : 1;
}
