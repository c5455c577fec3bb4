// SPDX-License-Identifier: MIT
// A terminal of 80 columns and 24 rows, as tmux(1) emulates it, in which a person's keys are pressed.
#pragma once

#include "tests/support/TestFolder.h"

#include <string>

class TerminalScreen
{
public:
    // Runs a line of the shell, with TERM as given unless `variables` ("NAME=value ...") say otherwise.
    explicit TerminalScreen(const std::string& line, const std::string& variables = "");
    ~TerminalScreen();
    TerminalScreen(const TerminalScreen&) = delete;
    TerminalScreen& operator=(const TerminalScreen&) = delete;

    // Characters as they are, and keys by tmux's names: "Enter", "Up", "C-d".
    void Type(const std::string& text) const;
    void Press(const std::string& keys) const;
    void Enter(const std::string& text) const;

    // Waits until it is seen, for 20 s, and gives all that is seen from the last `from` on, with what has
    // scrolled away, each row without blanks at its end.
    std::string WaitFor(const std::string& text, const std::string& from = "") const;
    std::string Seen() const;
    // The same rows with the colours as sequences.
    std::string SeenInColour() const;
    // Every byte that was written to the terminal.
    std::string Recorded() const { return mFolder.Read("recorded"); }

private:
    std::string Tmux(const std::string& arguments) const;

    TestFolder mFolder{"tavo-screen-"};
};
