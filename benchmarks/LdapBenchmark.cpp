// SPDX-License-Identifier: MIT
// The LDAP test with its walk as a process of its own, beside two calls of ldapsearch that fetch the same, on
// a directory with few entries and on one with 100,000 below the last context. The peak of memory is told,
// too. The directories come from tests/support/with-directory.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

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

void Measure(benchmark::State& state, const std::string& command)
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
    for (const auto& [subject, command] :
         {std::pair<std::string, std::string>("tavo", "exec " TAVO_LDAP_ONCE), {"ldapsearch", both}})
    {
        const std::string name = "ldap_" + std::string(entries ? entries : "") + "_entries/" + subject;
        benchmark::RegisterBenchmark(name.c_str(), Measure, command)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}();

} // namespace
