// SPDX-License-Identifier: MIT
#include "tests/support/ProgramFolder.h"

#include <fstream>
#include <random>
#include <regex>
#include <sstream>

namespace fs = std::filesystem;

ProgramFolder::ProgramFolder()
{
    std::random_device random;
    mPath = fs::temp_directory_path() / ("tavo-test-" + std::to_string(random()) + std::to_string(random()));
    fs::create_directories(mPath);
    for (const fs::directory_entry& entry : fs::directory_iterator(TAVO_PROGRAM_DIR))
    {
        const std::string extension = entry.path().extension().string();
        if (entry.is_regular_file() && extension != ".log" && extension != ".json")
            fs::copy_file(entry.path(), mPath / entry.path().filename());
    }
    // Another user of the machine must be able to start it.
    fs::permissions(mPath, fs::perms(0755));
}

ProgramFolder::~ProgramFolder()
{
    std::error_code ignored;
    fs::remove_all(mPath, ignored);
}

std::string ProgramFolder::Read(const fs::path& name) const
{
    std::ifstream file(mPath / name, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string WithoutTimes(const std::string& console)
{
    static const std::regex prefix(R"(\[[0-9]+ms\] )");
    return std::regex_replace(console, prefix, "");
}
