// SPDX-License-Identifier: MIT
// A program folder of its own with the agent in it, which does what the test says: see Agent.cpp.
#pragma once

#include "tests/support/ChildProcess.h"
#include "tests/support/TestFolder.h"

#include <atomic>

struct AgentOutcome
{
    DWORD exitCode = 0; // 128 and the signal's number when a signal ended it (Linux)
    std::string answers;
    std::string errors; // standard error
};

class AgentFolder : public TestFolder
{
public:
    AgentFolder();

    fs::path Agent() const;

    // All from any thread. `asNobody` (Linux, as root) runs the agent as a user without rights.
    ChildProcess Start(const std::vector<std::string>& steps) const;
    AgentOutcome Run(const std::vector<std::string>& steps, bool asNobody = false) const;
    std::string Answers(const std::vector<std::string>& steps) const { return Run(steps).answers; }

    std::string Log() const { return Read("Logs/Tavo.log"); }
    std::string Settings() const { return Read("Tavo.settings.json"); }
    // The names of the files whose name begins so, in order.
    std::vector<std::string> Names(const std::string& start) const;

private:
    std::wstring Line(const std::string& answers, const std::vector<std::string>& steps) const;

    mutable std::atomic<int> mRuns{0};
};

// A text's bytes, each as the agent reads it, whatever the shell or the code page.
std::string Encoded(const std::string& text);
