// SPDX-License-Identifier: MIT
#include "tests/kelvane/AgentFolder.h"

#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

int RunProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const AgentFolder::Environment& environment, bool asNobody)
{
    // All is ready before the fork: other threads of the test may hold a lock of the allocator.
    std::vector<const char*> argv{program.c_str()};
    for (const std::string& argument : arguments)
        argv.push_back(argument.c_str());
    argv.push_back(nullptr);
    std::vector<std::string> variables{"LD_LIBRARY_PATH=" TAVO_PROGRAM_DIR};
    for (const auto& [name, value] : environment)
        variables.push_back(name + "=" + value);
    std::vector<const char*> envp;
    for (const std::string& variable : variables)
        envp.push_back(variable.c_str());
    envp.push_back(nullptr);
    const passwd* nobody = asNobody ? getpwnam("nobody") : nullptr;

    const pid_t child = fork();
    if (child == 0)
    {
        if (nobody != nullptr && (setgid(nobody->pw_gid) != 0 || setuid(nobody->pw_uid) != 0))
            _exit(126);
        execve(program.c_str(), const_cast<char**>(argv.data()), const_cast<char**>(envp.data()));
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
