// SPDX-License-Identifier: MIT
#include "tests/kelvane/AgentFolder.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <random>
#include <sstream>

AgentFolder::AgentFolder()
{
    std::random_device random;
    mPath = std::filesystem::temp_directory_path() /
            ("kelvane-" + std::to_string(random()) + std::to_string(random()));
    std::filesystem::create_directory(mPath);
    std::filesystem::copy(TAVO_AGENT, Agent());
}

AgentFolder::~AgentFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

std::filesystem::path AgentFolder::Agent() const
{
    return mPath / std::filesystem::path(TAVO_AGENT).filename();
}

AgentOutcome AgentFolder::Run(const std::vector<std::string>& steps, const Environment& environment,
                              bool asNobody) const
{
    const std::string answers = "answers-" + std::to_string(++mRuns);
    std::vector<std::string> arguments{(mPath / answers).string()};
    if (asNobody)
        for (const std::string& name : {answers, answers + ".errors"})
        {
            Write(name, "");
            std::filesystem::permissions(mPath / name, std::filesystem::perms(0666));
        }
    arguments.insert(arguments.end(), steps.begin(), steps.end());
    AgentOutcome outcome;
    outcome.exitCode = RunProgram(Agent(), arguments, environment, asNobody);
    outcome.answers = Read(answers);
    outcome.errors = Read(answers + ".errors");
    std::error_code ignored; // the folder goes as a whole
    for (const std::string& name : {answers, answers + ".errors"})
        std::filesystem::remove(mPath / name, ignored);
    return outcome;
}

std::string AgentFolder::Read(const std::filesystem::path& name) const
{
    const std::ifstream file(mPath / name, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

void AgentFolder::Write(const std::filesystem::path& name, const std::string& text) const
{
    std::ofstream(mPath / name, std::ios::binary) << text;
}

std::vector<std::string> AgentFolder::Names(const std::string& start) const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(mPath))
        if (const std::string name = entry.path().filename().string(); name.starts_with(start))
            names.push_back(name);
    std::sort(names.begin(), names.end());
    return names;
}

std::string Encoded(const std::string& text)
{
    std::string encoded;
    for (const char byte : text)
    {
        std::array<char, 4> form{};
        std::snprintf(form.data(), form.size(), "%%%02X", static_cast<unsigned char>(byte));
        encoded += form.data();
    }
    return encoded;
}
