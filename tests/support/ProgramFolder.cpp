// SPDX-License-Identifier: MIT
#include "tests/support/ProgramFolder.h"

#include <regex>

ProgramFolder::ProgramFolder() : TestFolder("tavo-test-")
{
    for (const fs::directory_entry& entry : fs::directory_iterator(TAVO_PROGRAM_DIR))
    {
        const std::string extension = entry.path().extension().string();
        if (entry.is_regular_file() && extension != ".log" && extension != ".json")
            fs::copy_file(entry.path(), Path() / entry.path().filename());
    }
    // Another user of the machine must be able to start it.
    fs::permissions(Path(), fs::perms(0755));
}

std::string WithoutTimes(const std::string& console, const char* mark)
{
    static const std::regex prefix(R"(\[[0-9]+ms\] )");
    return std::regex_replace(console, prefix, mark);
}
