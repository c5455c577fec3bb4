// SPDX-License-Identifier: MIT
#include "tests/support/ProgramFolder.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pwd.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace
{

struct Pipe
{
    Pipe()
    {
        if (pipe2(mEnds.data(), O_CLOEXEC) != 0)
            std::abort();
    }
    ~Pipe()
    {
        CloseRead();
        CloseWrite();
    }
    void CloseRead() { Close(mEnds[0]); }
    void CloseWrite() { Close(mEnds[1]); }
    static void Close(int& end)
    {
        if (end >= 0)
            close(end);
        end = -1;
    }
    std::array<int, 2> mEnds{-1, -1};
};

[[noreturn]] void Become(const std::filesystem::path& program, const ProgramStart& start)
{
    std::vector<char*> arguments{const_cast<char*>(program.c_str())};
    for (const std::string& argument : start.arguments)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    // No display unless the test names one.
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    for (const auto& [name, value] : start.environment)
        value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
    if (start.asOtherUser)
    {
        const passwd* nobody = getpwnam("nobody");
        if (nobody == nullptr || setgroups(0, nullptr) != 0 || setgid(nobody->pw_gid) != 0 ||
            setuid(nobody->pw_uid) != 0)
            _exit(126);
    }
    execv(program.c_str(), arguments.data());
    _exit(127);
}

// Takes what is there from the pipe; false at its end.
bool Drain(int end, std::string& text)
{
    char buffer[65536];
    const ssize_t count = read(end, buffer, sizeof(buffer));
    if (count <= 0)
        return false;
    text.append(buffer, static_cast<std::size_t>(count));
    return true;
}

void DrainBoth(Pipe& output, Pipe& errors, std::chrono::steady_clock::time_point deadline,
               ProgramOutcome& outcome)
{
    while (output.mEnds[0] >= 0 || errors.mEnds[0] >= 0)
    {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd ends[] = {{output.mEnds[0], POLLIN, 0}, {errors.mEnds[0], POLLIN, 0}};
        if (left.count() <= 0 || poll(ends, 2, static_cast<int>(left.count())) <= 0)
            return;
        if (ends[0].revents != 0 && !Drain(output.mEnds[0], outcome.console))
            output.CloseRead();
        if (ends[1].revents != 0 && !Drain(errors.mEnds[0], outcome.errors))
            errors.CloseRead();
    }
}

} // namespace

bool RunsOnWindows()
{
    return false;
}

std::filesystem::path ProgramFolder::Program() const
{
    return mPath / "Tavo";
}

ProgramOutcome ProgramFolder::Run(const ProgramStart& start) const
{
    std::string text;
    for (const std::string& line : start.input)
        text += line + "\n";

    Pipe input, output, errors;
    const pid_t child = fork();
    if (child == 0)
    {
        dup2(input.mEnds[0], STDIN_FILENO);
        dup2(output.mEnds[1], STDOUT_FILENO);
        dup2(errors.mEnds[1], STDERR_FILENO);
        Become(Program(), start);
    }
    input.CloseRead();
    output.CloseWrite();
    errors.CloseWrite();
    // The program reads on while what it writes fits a pipe, so this cannot block for good.
    signal(SIGPIPE, SIG_IGN);
    if (write(input.mEnds[1], text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        text.clear();
    input.CloseWrite();

    ProgramOutcome outcome;
    const auto deadline = std::chrono::steady_clock::now() + start.limit;
    DrainBoth(output, errors, deadline, outcome);
    outcome.ended = output.mEnds[0] < 0 && errors.mEnds[0] < 0;
    if (!outcome.ended)
        kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome;
}
