// SPDX-License-Identifier: MIT
// The LDAP test with its walk, beside two calls of ldapsearch that fetch the same, on a directory with few
// entries and on one with 100,000 below the last context: from a console that is open, and by a process that
// has to start first. The peak of such a process's memory is told, too. The directories
// come from tests/support/with-directory.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

// Before main: a start without directories runs once inside each of them.
const bool kPrepared = []
{
    if (std::getenv("TAVO_LDAP_PORT"))
        return true;
    const std::string inside =
        " " TAVO_SOURCE_DIR "/tests/support/with-directory /proc/" + std::to_string(getpid()) + "/exe";
    const int few = std::system(("TAVO_MANY=3" + inside).c_str());
    const int many = std::system(("TAVO_MANY=100000" + inside).c_str());
    _exit(few == 0 && many == 0 ? 0 : 1);
}();

// A test by a process that has made one already.
void TestFromConsole(benchmark::State& state)
{
    for (auto unused : state)
    {
        std::FILE* const answer = popen(TAVO_LDAP_ONCE " 5", "r");
        double seconds = 0;
        const bool read = answer && std::fscanf(answer, "%lf", &seconds) == 1;
        if (!answer || pclose(answer) != 0 || !read)
        {
            state.SkipWithError("the test failed");
            break;
        }
        state.SetIterationTime(seconds);
    }
}

void RunProcess(benchmark::State& state, const std::string& command)
{
    long peak = 0;
    for (auto unused : state)
    {
        // Not posix_spawn: the peak of a process counts what it was before it became another program.
        const pid_t child = fork();
        if (child == 0)
        {
            execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
            _exit(1);
        }
        int status = -1;
        rusage usage{};
        if (child > 0)
            wait4(child, &status, 0, &usage);
        if (status != 0)
        {
            state.SkipWithError("the call failed");
            break;
        }
        peak = usage.ru_maxrss;
    }
    state.counters["peak_KiB"] = static_cast<double>(peak);
}

const bool kRegistered = []
{
    const char* entries = std::getenv("TAVO_MANY");
    const std::string search = "ldapsearch -LLL -x -H ldap://127.0.0.1:$TAVO_LDAP_PORT "
                               "-D cn=alice,dc=one,dc=example -w wonderland ";
    const std::string both = search + "-b '' -s base namingContexts distinguishedName >/dev/null && exec " +
                             search + "-b 'o=Größe 😀' -s one objectClass distinguishedName >/dev/null";
    const std::string name = "ldap_" + std::string(entries ? entries : "") + "_entries";
    const auto run = [](const std::string& command)
    { return [command](benchmark::State& state) { RunProcess(state, command); }; };
    benchmark::RegisterBenchmark((name + "/tavo").c_str(), TestFromConsole)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
    for (const auto& [subject, command] : {std::pair<std::string, std::string>("/ldapsearch", both),
                                           {"_started/tavo", "exec " TAVO_LDAP_ONCE},
                                           {"_started/ldapsearch", both}})
        benchmark::RegisterBenchmark((name + subject).c_str(), run(command))
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    return true;
}();

} // namespace
