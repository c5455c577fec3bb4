// SPDX-License-Identifier: MIT
// Runs the program that ships in a copy of its folder, so that tests do not meet. The same tests drive both
// systems: on Linux through the terminal, on Windows through the console's window.
#pragma once

#include "tests/support/TestFolder.h"

#include <chrono>
#include <functional>
#include <utility>

// Which of the two programs this is; for the few cases that one system cannot hold.
bool RunsOnWindows();

// Keeps a file from everybody for 0.7 s, as a virus scanner may; where a system has that.
void HoldForAMoment(const fs::path& path);

struct ProgramOutcome
{
    bool ended = true;   // false: it was ended because its time ran out
    int exitCode = -1;   // minus the number of the signal that ended it (Linux)
    std::string console; // UTF-8, "\n" line ends: what the user saw, boxes and dialogs included
    std::string errors;  // standard error; Linux only
    double secondsAfterSignal = 0;
    bool leftAnImage = false; // of its memory; Linux only
};

struct ProgramStart
{
    std::vector<std::string> arguments{};
    // Lines of input: a button's caption, or ID=text. When they are used up the dialog on top is cancelled.
    std::vector<std::string> input{};
    // Set in the program's environment; Linux only.
    std::vector<std::pair<std::string, std::string>> environment{};
    std::chrono::seconds limit{60};
    bool asOtherUser = false; // as a user without rights ("nobody"); Linux only
    // What the console must say before the user does anything; in the terminal the input then stays open.
    std::string awaited{};
    // Linux only: sent once this holds of the console's text and the process; the input ends no sooner.
    int signal = 0;
    std::function<bool(const std::string& console, int process)> signalWhen{};
    std::vector<int> ignoredSignals{}; // from the start
};

class ProgramFolder : public TestFolder
{
public:
    // Copies TAVO_PROGRAM_DIR without logs and settings.
    ProgramFolder();

    fs::path Program() const;

    ProgramOutcome Run(const ProgramStart& start) const;

    std::string Log() const { return Read("Logs/Tavo.log"); }
};

// What a command of the shell writes, and then "ended with N" where that is not 0; Linux only.
std::string Said(const std::string& command);

// All that a process can write to; Linux only, as root.
std::string MemoryOf(int id);

// As it stands there: each character in so many bytes, the lowest first.
std::string Widened(const std::string& text, std::size_t width);

// The console's text with `mark` in place of each "[...ms] ", whose number differs from run to run.
std::string WithoutTimes(const std::string& console, const char* mark = "");
