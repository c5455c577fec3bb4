// SPDX-License-Identifier: MIT
// A program folder of its own with the agent in it, gone at the end. See Agent.cpp for the steps.
#pragma once

#include <atomic>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

struct AgentOutcome
{
    int exitCode = -1; // 128 and the signal's number when a signal ended it (Linux)
    std::string answers;
    std::string errors; // standard error
};

class AgentFolder
{
public:
    using Environment = std::vector<std::pair<std::string, std::string>>;

    AgentFolder();
    ~AgentFolder();
    AgentFolder(const AgentFolder&) = delete;
    AgentFolder& operator=(const AgentFolder&) = delete;

    const std::filesystem::path& Path() const { return mPath; }
    std::filesystem::path Agent() const;

    // Any thread may call it. `asNobody` (Linux, as root) runs the agent as a user without rights.
    AgentOutcome Run(const std::vector<std::string>& steps, const Environment& environment = {},
                     bool asNobody = false) const;

    std::string Read(const std::filesystem::path& name) const; // empty when it is not there
    void Write(const std::filesystem::path& name, const std::string& text) const;
    std::string Log() const { return Read("Logs/Tavo.log"); }
    std::string Settings() const { return Read("Tavo.settings.json"); }
    // The names of the files whose name begins so, in order.
    std::vector<std::string> Names(const std::string& start) const;

private:
    std::filesystem::path mPath;
    mutable std::atomic<int> mRuns{0};
};

// Starts a program and waits for it: its exit code. Each system has its own.
int RunProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const AgentFolder::Environment& environment, bool asNobody);

// A text's bytes, each as the agent reads it, whatever the shell or the code page.
std::string Encoded(const std::string& text);
