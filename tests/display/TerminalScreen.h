// SPDX-License-Identifier: MIT
// A terminal of 80 columns and 24 rows, as tmux(1) emulates it, in which a person's keys are pressed.
#pragma once

#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <regex>
#include <thread>

class TerminalScreen
{
public:
    // Runs a line of the shell, with TERM as given unless `variables` ("NAME=value ...") say otherwise.
    explicit TerminalScreen(const std::string& line, const std::string& variables = "")
    {
        const std::string setting = "env -u DISPLAY -u WAYLAND_DISPLAY -u NO_COLOR LC_ALL=C.UTF-8 "
                                    "TERM=xterm-256color " +
                                    variables + " sh -c " + Quoted(line);
        // Nothing is written before it is recorded.
        Tmux("new-session -d -x 80 -y 24 " + Quoted("read go; " + setting + "; sleep 60"));
        Tmux("pipe-pane " + Quoted("cat >'" + mFolder.Path().string() + "/recorded'"));
        Press("Enter");
    }
    ~TerminalScreen() { Tmux("kill-server"); }
    TerminalScreen(const TerminalScreen&) = delete;
    TerminalScreen& operator=(const TerminalScreen&) = delete;

    // Characters as they are, and keys by tmux's names: "Enter", "Up", "C-d".
    void Type(const std::string& text) const { Tmux("send-keys -l -- " + Quoted(text)); }
    void Press(const std::string& keys) const { Tmux("send-keys " + keys); }
    void Enter(const std::string& text) const
    {
        if (!text.empty())
            Type(text);
        Press("Enter");
    }

    // Waits until it is seen, for 20 s, and gives all that is seen from the last `from` on, with what has
    // scrolled away, each row without blanks at its end.
    std::string WaitFor(const std::string& text, const std::string& from = "") const
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        for (;;)
        {
            std::string seen = Tmux("capture-pane -p -S -");
            seen.resize(seen.find_last_not_of('\n') + 1);
            const std::size_t start = seen.rfind(from);
            const std::string part = from.empty()                 ? seen
                                     : start == std::string::npos ? ""
                                                                  : seen.substr(start);
            if (part.find(text) != std::string::npos)
                return part;
            if (std::chrono::steady_clock::now() > deadline)
            {
                ADD_FAILURE() << "\"" << text << "\" is not seen:\n" << seen;
                return part;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    }
    // All rows with the colours as sequences.
    std::string SeenInColour() const { return Tmux("capture-pane -e -p -S -"); }
    // Every byte that was written to the terminal.
    std::string Recorded() const { return mFolder.Read("recorded"); }

private:
    static std::string Quoted(const std::string& text)
    {
        return "'" + std::regex_replace(text, std::regex("'"), "'\\''") + "'";
    }

    std::string Tmux(const std::string& arguments) const
    {
        return Said("tmux -u -f /dev/null -S '" + mFolder.Path().string() + "/socket' " + arguments +
                    " 2>&1");
    }

    TestFolder mFolder{"tavo-screen-"};
};
