// SPDX-License-Identifier: MIT
// The LDAP test with its walk as a process of its own, beside two calls of ldapsearch that fetch the same, on
// a directory with few entries and on one with 100,000 below the last context. The peak of memory is told,
// too. The directories come from tests/support/with-directory.
#include "ldap/LdapTest.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr const char* kOnce = "TAVO_LDAP_ONCE"; // set in the process that is measured
constexpr const char* kMany = "100000";

// One whole test, as from the dialog; the console's text is dropped.
int TestOnce(const char* port)
{
    LDAPCreds creds;
    creds.mServer = L"127.0.0.1";
    creds.mPort = static_cast<DWORD>(std::atoi(port));
    creds.mUser = L"cn=alice,dc=one,dc=example";
    creds.mPassword = L"wonderland";
    const LdapConsole console = [](const wchar_t*) {};
    const bool bound = TryLdapMethod(eLDAPAuthSimplePlain, creds, console,
                                     [&](LDAP* session) { WalkLdapTree(session, console); });
    return bound ? 0 : 1;
}

// Before main: the measured process does its work and ends; a start without directories runs once inside
// each of them.
const bool kPrepared = []
{
    const char* port = std::getenv("TAVO_LDAP_PORT");
    if (port && std::getenv(kOnce))
        _exit(TestOnce(port));
    if (!port)
    {
        const std::string inside =
            " " TAVO_SOURCE_DIR "/tests/support/with-directory /proc/" + std::to_string(getpid()) + "/exe";
        const int few = std::system(("TAVO_MANY=3" + inside).c_str());
        const int many = std::system((std::string("TAVO_MANY=") + kMany + inside).c_str());
        _exit(few == 0 && many == 0 ? 0 : 1);
    }
    return true;
}();

void Measure(benchmark::State& state, const std::vector<std::string>& command, bool once)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    long peak = 0;
    for (auto unused : state)
    {
        if (once)
            setenv(kOnce, "1", 1);
        pid_t child = 0;
        const int failed = posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ);
        unsetenv(kOnce);
        int status = -1;
        rusage usage{};
        if (failed == 0)
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

std::string CaseName()
{
    const char* entries = std::getenv("TAVO_MANY");
    return std::string("ldap_") + (entries ? entries : "") + "_entries";
}

const bool kRegistered = []
{
    const std::string search =
        "ldapsearch -LLL -x -H ldap://127.0.0.1:" + std::string(std::getenv("TAVO_LDAP_PORT")) +
        " -D cn=alice,dc=one,dc=example -w wonderland ";
    const std::string both = search + "-b '' -s base namingContexts distinguishedName >/dev/null && exec " +
                             search + "-b 'o=Größe 😀' -s one objectClass distinguishedName >/dev/null";
    benchmark::RegisterBenchmark((CaseName() + "/tavo").c_str(), Measure,
                                 std::vector<std::string>{"/proc/self/exe"}, true)
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((CaseName() + "/ldapsearch").c_str(), Measure,
                                 std::vector<std::string>{"/bin/sh", "-c", both}, false)
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    return true;
}();

} // namespace
