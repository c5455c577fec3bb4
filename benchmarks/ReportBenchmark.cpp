// SPDX-License-Identifier: MIT
// The whole program in the terminal, from its start over the report to its end, beside an empty program
// that is linked to the same libraries and beside neofetch.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

// Without input and with its output dropped, as a scheduled start has it.
void Start(benchmark::State& state, const char* program, const char* option)
{
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    char* arguments[] = {const_cast<char*>(program), const_cast<char*>(option), nullptr};
    for (auto _ : state)
    {
        pid_t child = 0;
        int status = -1;
        if (posix_spawnp(&child, program, &files, nullptr, arguments, environ) == 0)
            waitpid(child, &status, 0);
        if (status != 0)
            state.SkipWithError("the program failed");
    }
    posix_spawn_file_actions_destroy(&files);
}

#define TAVO_PROGRAM_CASE(name, program, option)                                                             \
    BENCHMARK_CAPTURE(Start, name, program, option)                                                          \
        ->Name("report/" #name)                                                                              \
        ->Unit(benchmark::kMillisecond)                                                                      \
        ->UseRealTime()

// Without a display server, so that the console opens in the terminal.
const int kNoDisplay = unsetenv("DISPLAY") + unsetenv("WAYLAND_DISPLAY");

TAVO_PROGRAM_CASE(tavo, TAVO_PROGRAM_DIR "/Tavo", nullptr);
TAVO_PROGRAM_CASE(empty, TAVO_EMPTY_PROGRAM, nullptr);
TAVO_PROGRAM_CASE(neofetch, "neofetch", "--stdout");

} // namespace
