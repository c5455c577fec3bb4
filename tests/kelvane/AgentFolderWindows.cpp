// SPDX-License-Identifier: MIT
#include "tests/kelvane/AgentFolder.h"

#include <process.h>

#include <cstdlib>
#include <mutex>

int RunProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const AgentFolder::Environment& environment, bool)
{
    std::vector<std::string> quoted{"\"" + program.string() + "\""};
    for (const std::string& argument : arguments)
        quoted.push_back("\"" + argument + "\"");
    std::vector<const char*> argv;
    for (const std::string& argument : quoted)
        argv.push_back(argument.c_str());
    argv.push_back(nullptr);

    std::intptr_t process;
    {
        // The child takes this process's variables.
        static std::mutex guard;
        const std::lock_guard lock(guard);
        for (const auto& [name, value] : environment)
            _putenv((name + "=" + value).c_str());
        process = _spawnv(_P_NOWAIT, program.string().c_str(), argv.data());
        for (const auto& [name, value] : environment)
            _putenv((name + "=").c_str());
    }
    int exitCode = -1;
    if (process != -1)
        _cwait(&exitCode, process, 0);
    return exitCode;
}
