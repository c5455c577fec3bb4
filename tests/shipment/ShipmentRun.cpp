// SPDX-License-Identifier: MIT
#include "tests/shipment/ShipmentRun.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

namespace fs = std::filesystem;

bool gHasOwnNetwork = false;

void ShipmentTest::ReplaceArchiver(const std::string& script) const
{
    const fs::path archiver = folder.Path() / "7za.exe";
    const fs::path real = folder.Path() / "real";
    fs::rename(archiver, real);
    WriteFile(archiver, "#!/bin/sh\nREAL='" + real.string() + "'\n" + script);
    fs::permissions(archiver, fs::perms(0755));
}

std::vector<std::string> ShipmentTest::Leftovers() const
{
    std::vector<std::string> found;
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(Logs(), ignored))
    {
        const std::string name = entry.path().filename().string();
        if (name.find(".zip") != std::string::npos || name == "uploadIgnoreList.txt")
            found.push_back(name);
    }
    return found;
}

void WriteFile(const fs::path& path, const std::string& content)
{
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void MakeOld(const fs::path& path, int days)
{
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(24 * days));
}

std::string RandomBytes(std::size_t count)
{
    std::mt19937_64 generator(count);
    std::string bytes(count, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(generator());
    return bytes;
}

std::vector<std::string> ShipmentLines(const ProgramOutcome& outcome)
{
    std::vector<std::string> lines;
    std::istringstream console(WithoutTimes(outcome.console));
    bool begun = false;
    for (std::string line; std::getline(console, line);)
    {
        begun = begun || line.compare(0, 9, "FTP_LOG: ") == 0;
        if (begun && line.find("% done, ") == std::string::npos)
            lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> Verdicts(const ProgramOutcome& outcome)
{
    std::vector<std::string> found;
    for (const std::string& line : ShipmentLines(outcome))
        for (const char* text : {"Error - ", "Passive upload", "Successfully", "Log FTP failed", "### ",
                                 "Failed to launch", "Timed out", "Compression finished"})
            if (line.compare(0, std::string("FTP_LOG: ").size() + std::string(text).size(),
                             std::string("FTP_LOG: ") + text) == 0)
                found.push_back(line.substr(9));
    return found;
}

fs::path Unpack(const fs::path& archive, int expected)
{
    const fs::path target = archive.string() + ".unpacked";
    const std::string command = "'" TAVO_PROGRAM_DIR "/7za.exe' x -y -o'" + target.string() + "' '" +
                                archive.string() + "' >/dev/null </dev/null";
    EXPECT_EQ(expected, WEXITSTATUS(std::system(command.c_str())));
    return target;
}
