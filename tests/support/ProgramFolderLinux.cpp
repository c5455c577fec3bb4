// SPDX-License-Identifier: MIT
#include "tests/support/OwnNetwork.h"
#include "tests/support/ProgramFolder.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
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

// As the shell would be told: the user, the environment with the changes of `start`, and without a display
// unless the test names one, then the program.
std::vector<std::string> CommandOf(const ProgramStart& start, const std::string& program)
{
    std::vector<std::string> command = {"/usr/bin/env", "-u", "DISPLAY", "-u", "WAYLAND_DISPLAY"};
    for (const auto& [name, value] : start.environment)
        if (value.empty())
            command.insert(command.end(), {"-u", name});
    for (const auto& [name, value] : start.environment)
        if (!value.empty())
            command.push_back(name + "=" + value);
    if (start.asOtherUser)
        command.insert(command.end(), {"setpriv", "--reuid=nobody", "--regid=65534", "--clear-groups"});
    command.push_back(program);
    command.insert(command.end(), start.arguments.begin(), start.arguments.end());
    return command;
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

// Gives the input when what it waits for is there.
void DrainBoth(pid_t child, Pipe& output, Pipe& errors, Pipe& input, const ProgramStart& start,
               ProgramOutcome& outcome)
{
    bool signalWaits = start.signal != 0;
    std::chrono::steady_clock::time_point signalled;
    const auto deadline = std::chrono::steady_clock::now() + start.limit;
    std::string text;
    for (const std::string& line : start.input)
        text += line + "\n";
    bool given = false;
    while (output.mEnds[0] >= 0 || errors.mEnds[0] >= 0)
    {
        if (!given && outcome.console.find(start.awaited) != std::string::npos)
        {
            given = true;
            // What fits a pipe cannot block; a program that is gone already takes nothing.
            [[maybe_unused]] const ssize_t taken = write(input.mEnds[1], text.data(), text.size());
            if (start.awaited.empty() && !signalWaits)
                input.CloseWrite();
        }
        if (signalWaits && start.signalWhen(outcome.console, child))
        {
            signalWaits = false;
            signalled = std::chrono::steady_clock::now();
            kill(child, start.signal);
            if (std::ranges::count(start.ignoredSignals, start.signal) != 0)
                input.CloseWrite();
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd ends[] = {{output.mEnds[0], POLLIN, 0}, {errors.mEnds[0], POLLIN, 0}};
        constexpr int kLook = 20; // ms
        if (left.count() <= 0 ||
            (poll(ends, 2, signalWaits ? kLook : static_cast<int>(left.count())) <= 0 && !signalWaits))
            return;
        if (ends[0].revents != 0 && !Drain(output.mEnds[0], outcome.console))
            output.CloseRead();
        if (ends[1].revents != 0 && !Drain(errors.mEnds[0], outcome.errors))
            errors.CloseRead();
    }
    outcome.secondsAfterSignal =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - signalled).count();
}

} // namespace

bool RunsOnWindows()
{
    return false;
}

bool LeaveNamedEventsOfOthers()
{
    return EnterOwnNetwork();
}

void SetVariable(const char* name, const char* value)
{
    value != nullptr ? setenv(name, value, 1) : unsetenv(name);
}

std::filesystem::path ProgramFolder::Program() const
{
    return Path() / "Tavo";
}

ProgramOutcome ProgramFolder::Run(const ProgramStart& start) const
{
    const std::vector<std::string> command = CommandOf(start, Program().string());
    std::vector<char*> pointers;
    for (const std::string& word : command)
        pointers.push_back(const_cast<char*>(word.c_str()));
    pointers.push_back(nullptr);
    Pipe input, output, errors;
    const pid_t child = fork();
    if (child == 0)
    {
        for (const int number : start.ignoredSignals)
            signal(number, SIG_IGN);
        // Allocates nothing: a thread that has stayed behind may hold the allocator's lock.
        dup2(input.mEnds[0], STDIN_FILENO);
        dup2(output.mEnds[1], STDOUT_FILENO);
        dup2(errors.mEnds[1], STDERR_FILENO);
        execv(pointers[0], pointers.data());
        _exit(127);
    }
    input.CloseRead();
    output.CloseWrite();
    errors.CloseWrite();
    signal(SIGPIPE, SIG_IGN);

    ProgramOutcome outcome;
    DrainBoth(child, output, errors, input, start, outcome);
    outcome.ended = output.mEnds[0] < 0 && errors.mEnds[0] < 0;
    if (!outcome.ended)
        kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    outcome.leftAnImage = WIFSIGNALED(status) && WCOREDUMP(status);
    return outcome;
}
