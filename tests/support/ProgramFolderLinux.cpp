// SPDX-License-Identifier: MIT
#include "tests/support/ProgramFolder.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>

using Clock = std::chrono::steady_clock;

bool RunsOnWindows()
{
    return false;
}

void SetVariable(const char* name, const char* value)
{
    value != nullptr ? setenv(name, value, 1) : unsetenv(name);
}

std::string Said(const std::string& command)
{
    std::FILE* const pipe = popen(command.c_str(), "re");
    std::string text;
    for (int byte = 0; (byte = std::fgetc(pipe)) != EOF;)
        text += static_cast<char>(byte);
    const int status = pclose(pipe);
    return text + (status == 0 ? "" : "ended with " + std::to_string(WEXITSTATUS(status)));
}

std::string MemoryOf(int id)
{
    const std::string process = "/proc/" + std::to_string(id);
    const int memory = open((process + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
    std::ifstream maps(process + "/maps");
    std::string all;
    for (std::string line; std::getline(maps, line);)
    {
        unsigned long begin = 0;
        unsigned long end = 0;
        char mode[5] = "";
        if (std::sscanf(line.c_str(), "%lx-%lx %4s", &begin, &end, mode) != 3 || mode[1] != 'w')
            continue;
        std::string part(end - begin, '\0');
        const ssize_t got = pread(memory, part.data(), part.size(), static_cast<off_t>(begin));
        all.append(part, 0, static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    }
    close(memory);
    return all;
}

std::string Widened(const std::string& text, std::size_t width)
{
    std::string wide;
    for (const char character : text)
        wide.append(1, character).append(width - 1, '\0');
    return wide;
}

fs::path ProgramFolder::Program() const
{
    return Path() / "Tavo";
}

// As the shell would be told: the environment without a display unless the test names one, user, program.
static std::vector<std::string> CommandOf(const ProgramStart& start, const std::string& program)
{
    std::vector<std::string> command = {"/usr/bin/env", "-u", "DISPLAY", "-u", "WAYLAND_DISPLAY"};
    for (const auto& [name, value] : start.environment)
        command.push_back(name + "=" + value);
    if (start.asOtherUser)
        command.insert(command.end(), {"setpriv", "--reuid=nobody", "--regid=65534", "--clear-groups"});
    command.push_back(program);
    command.insert(command.end(), start.arguments.begin(), start.arguments.end());
    return command;
}

void HoldForAMoment(const fs::path&) {}

ProgramOutcome ProgramFolder::Run(const ProgramStart& start) const
{
    const std::vector<std::string> command = CommandOf(start, Program().string());
    std::vector<char*> pointers;
    for (const std::string& word : command)
        pointers.push_back(const_cast<char*>(word.c_str()));
    pointers.push_back(nullptr);
    const TestFolder said;
    const auto file = [&said](const char* name)
    { return open((said.Path() / name).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600); };
    const int console = file("console"), errors = file("errors");
    int input[2];
    if (pipe2(input, O_CLOEXEC) != 0)
        std::abort();
    const pid_t child = fork();
    if (child == 0)
    {
        for (const int number : start.ignoredSignals)
            signal(number, SIG_IGN);
        // Allocates nothing: a thread that has stayed behind may hold the allocator's lock.
        dup2(input[0], STDIN_FILENO);
        dup2(console, STDOUT_FILENO);
        dup2(errors, STDERR_FILENO);
        execv(pointers[0], pointers.data());
        _exit(127);
    }
    for (const int end : {input[0], console, errors})
        close(end);
    signal(SIGPIPE, SIG_IGN);

    std::string lines;
    for (const std::string& line : start.input)
        lines += line + "\n";
    const auto endInput = [&input] { close(std::exchange(input[1], -1)); };
    bool given = false;
    bool signalWaits = start.signal != 0;
    Clock::time_point signalled;
    const Clock::time_point deadline = Clock::now() + start.limit;
    ProgramOutcome outcome;
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0)
    {
        outcome.console = said.Read("console");
        if (!given && outcome.console.find(start.awaited) != std::string::npos)
        {
            given = true;
            // A program that is gone already takes nothing.
            [[maybe_unused]] const ssize_t taken = write(input[1], lines.data(), lines.size());
            if (start.awaited.empty() && !signalWaits)
                endInput();
        }
        if (signalWaits && start.signalWhen(outcome.console, child))
        {
            signalWaits = false;
            signalled = Clock::now();
            kill(child, start.signal);
            if (std::ranges::count(start.ignoredSignals, start.signal) != 0)
                endInput();
            else if (start.signal != SIGTERM)
            {
                // As HUP comes from a shell that ends, and from its terminal's end.
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
                kill(child, SIGTERM);
            }
        }
        outcome.ended = Clock::now() <= deadline;
        if (!outcome.ended)
            kill(child, SIGKILL);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    endInput();
    outcome.secondsAfterSignal = std::chrono::duration<double>(Clock::now() - signalled).count();
    outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    outcome.leftAnImage = WIFSIGNALED(status) && WCOREDUMP(status);
    outcome.console = said.Read("console");
    outcome.errors = said.Read("errors");
    return outcome;
}
