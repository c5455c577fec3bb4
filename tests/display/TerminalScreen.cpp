// SPDX-License-Identifier: MIT
#include "tests/display/TerminalScreen.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <thread>

namespace
{

std::string Quoted(std::string text)
{
    for (std::size_t at = 0; (at = text.find('\'', at)) != std::string::npos; at += 4)
        text.replace(at, 1, "'\\''");
    return "'" + text + "'";
}

} // namespace

TerminalScreen::TerminalScreen(const std::string& line, const std::string& variables)
{
    const std::string setting = "env -u DISPLAY -u WAYLAND_DISPLAY -u NO_COLOR LC_ALL=C.UTF-8 "
                                "TERM=xterm-256color " +
                                variables + " sh -c " + Quoted(line);
    // Nothing is written before it is recorded.
    Tmux("new-session -d -x 80 -y 24 " + Quoted("read go; " + setting + "; sleep 60"));
    Tmux("pipe-pane " + Quoted("cat >'" + mFolder.Path().string() + "/recorded'"));
    Press("Enter");
}

TerminalScreen::~TerminalScreen()
{
    Tmux("kill-server");
}

std::string TerminalScreen::Tmux(const std::string& arguments) const
{
    const std::string command =
        "tmux -u -f /dev/null -S '" + mFolder.Path().string() + "/socket' " + arguments + " 2>&1";
    std::string output;
    FILE* const pipe = popen(command.c_str(), "re");
    char buffer[4096];
    while (const std::size_t count = fread(buffer, 1, sizeof buffer, pipe))
        output.append(buffer, count);
    EXPECT_EQ(pclose(pipe), 0) << command << output;
    return output;
}

void TerminalScreen::Type(const std::string& text) const
{
    Tmux("send-keys -l -- " + Quoted(text));
}

void TerminalScreen::Press(const std::string& keys) const
{
    Tmux("send-keys " + keys);
}

void TerminalScreen::Enter(const std::string& text) const
{
    if (!text.empty())
        Type(text);
    Press("Enter");
}

std::string TerminalScreen::Seen() const
{
    std::string rows = Tmux("capture-pane -p -S -");
    return rows.substr(0, rows.find_last_not_of('\n') + 1);
}

std::string TerminalScreen::SeenInColour() const
{
    return Tmux("capture-pane -e -p -S -");
}

std::string TerminalScreen::WaitFor(const std::string& text, const std::string& from) const
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    for (;;)
    {
        const std::string seen = Seen();
        const std::size_t start = from.empty() ? 0 : seen.rfind(from);
        const std::string part = start == std::string::npos ? "" : seen.substr(start);
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
