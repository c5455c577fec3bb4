// SPDX-License-Identifier: MIT
#include "platform/kernel/CommandLine.h"
#include "platform/kernel/Handle.h"
#include "text/Unicode.h"
#include "winuser.h"

#include <fcntl.h>
#include <poll.h>
#include <process.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <mutex>
#include <optional>

using namespace platform;

namespace
{

constexpr DWORD kSignalExit = 128; // added to a signal's number, as shells do

class Process : public Waitable
{
public:
    explicit Process(int file) : mFile(file) {}

    ~Process() override
    {
        if (ExitCode())
        {
            close(mFile);
            return;
        }
        // Nobody will ask any more, but somebody has to collect it.
        _beginthread(Collect, 0, reinterpret_cast<void*>(static_cast<std::intptr_t>(mFile)));
    }

    bool Wait(Deadline deadline) override
    {
        pollfd ready = {mFile, POLLIN, 0};
        for (;;)
        {
            const int count = poll(&ready, 1, MillisecondsUntil(deadline));
            if (count > 0)
                return true;
            if (count == 0 && Clock::now() >= deadline)
                return false;
        }
    }

    bool Kill() { return syscall(SYS_pidfd_send_signal, mFile, SIGKILL, nullptr, 0) == 0; }

    // None while it runs.
    std::optional<DWORD> ExitCode()
    {
        const std::scoped_lock lock(mMutex);
        siginfo_t status = {};
        if (!mExitCode && waitid(P_PIDFD, static_cast<id_t>(mFile), &status, WEXITED | WNOHANG) == 0 &&
            status.si_pid != 0)
        {
            const auto code = static_cast<DWORD>(status.si_status);
            mExitCode = status.si_code == CLD_EXITED ? code : kSignalExit + code;
        }
        return mExitCode;
    }

private:
    static void Collect(void* argument)
    {
        const auto file = static_cast<int>(reinterpret_cast<std::intptr_t>(argument));
        siginfo_t ignored = {};
        while (waitid(P_PIDFD, static_cast<id_t>(file), &ignored, WEXITED) != 0 && errno == EINTR)
        {
        }
        close(file);
    }

    int mFile; // pidfd_open(2)
    std::mutex mMutex;
    std::optional<DWORD> mExitCode;
};

// The handle that stands for the new process's first thread: the caller only closes it.
class FirstThread : public KernelObject
{
};

constexpr char kNowhere[] = "/dev/null";

class SpawnSettings
{
public:
    SpawnSettings()
    {
        posix_spawn_file_actions_init(&mActions);
        posix_spawnattr_init(&mAttributes);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&mAttributes, &signals);
        sigfillset(&signals);
        // What the caller of this program has it ignore, as nohup(1) does, its children ignore too.
        for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
        {
            struct sigaction action = {};
            if (sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
                sigdelset(&signals, number);
        }
        posix_spawnattr_setsigdefault(&mAttributes, &signals);
        posix_spawnattr_setflags(&mAttributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        posix_spawn_file_actions_addclosefrom_np(&mActions, STDERR_FILENO + 1);
    }
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&mActions);
        posix_spawnattr_destroy(&mAttributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    void Hide()
    {
        posix_spawn_file_actions_addopen(&mActions, STDIN_FILENO, kNowhere, O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&mActions, STDOUT_FILENO, kNowhere, O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&mActions, STDERR_FILENO, kNowhere, O_WRONLY, 0);
    }
    void SetFolder(const std::string& folder)
    {
        posix_spawn_file_actions_addchdir_np(&mActions, folder.c_str());
    }

    posix_spawn_file_actions_t mActions;
    posix_spawnattr_t mAttributes;
};

// Starts it and gives its id, or 0 with an errno value. What it makes is for its account alone: the mask of
// the whole process is changed for that moment.
pid_t Spawn(const std::string& program, const std::vector<std::wstring>& words, const SpawnSettings& settings,
            int& error)
{
    std::vector<std::string> arguments(words.size());
    std::ranges::transform(words, arguments.begin(), text::ToUtf8);
    std::vector<char*> pointers(words.size() + 1); // null at the end
    std::ranges::transform(arguments, pointers.begin(),
                           [](std::string& argument) { return argument.data(); });
    pid_t id = 0;
    static std::mutex turn; // two at once would leave the other's mask for good
    const std::lock_guard<std::mutex> lock(turn);
    const mode_t mask = umask(S_IRWXG | S_IRWXO);
    error = posix_spawn(&id, program.c_str(), &settings.mActions, &settings.mAttributes, pointers.data(),
                        environ);
    umask(mask);
    return error == 0 ? id : 0;
}

} // namespace

BOOL CreateProcessW(LPCWSTR application, LPWSTR commandLine, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES,
                    BOOL, DWORD flags, LPVOID environment, LPCWSTR currentDirectory, LPSTARTUPINFOW startup,
                    LPPROCESS_INFORMATION information)
{
    if (application != nullptr || commandLine == nullptr || flags != 0 || environment != nullptr)
        return FailWith(ERROR_INVALID_PARAMETER);
    const std::vector<std::wstring> words = SplitCommandLine(commandLine);
    const std::string program = text::ToUtf8(words.front());
    SpawnSettings settings;
    if (currentDirectory != nullptr)
    {
        const std::string folder = text::ToUtf8(currentDirectory);
        struct stat status = {};
        if (stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode))
            return FailWith(ERROR_DIRECTORY);
        settings.SetFolder(folder);
    }
    if ((startup->dwFlags & STARTF_USESHOWWINDOW) != 0 && startup->wShowWindow == SW_HIDE)
    {
        if (access(kNowhere, R_OK | W_OK) != 0)
            return FailWith(ERROR_GEN_FAILURE); // a device's, lest the program is looked for
        settings.Hide();
    }
    int error = 0;
    const pid_t id = Spawn(program, words, settings, error);
    if (id == 0)
        return FailWithErrno(error);
    const auto file = static_cast<int>(syscall(SYS_pidfd_open, id, 0));
    if (file < 0)
    {
        error = errno;
        kill(id, SIGKILL);
        waitpid(id, nullptr, 0);
        return FailWithErrno(error);
    }
    information->hProcess = MakeHandle(std::make_shared<Process>(file));
    information->hThread = MakeHandle(std::make_shared<FirstThread>());
    information->dwProcessId = static_cast<DWORD>(id);
    information->dwThreadId = static_cast<DWORD>(id);
    return TRUE;
}

BOOL TerminateProcess(HANDLE process, UINT)
{
    const auto object = ObjectOf<Process>(process);
    if (object == nullptr)
        return FALSE;
    return object->Kill() ? TRUE : FailWithErrno(errno);
}

BOOL GetExitCodeProcess(HANDLE process, LPDWORD exitCode)
{
    const auto object = ObjectOf<Process>(process);
    if (object == nullptr)
        return FALSE;
    *exitCode = object->ExitCode().value_or(STILL_ACTIVE);
    return TRUE;
}

HANDLE GetCurrentProcess()
{
    return reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1));
}

HANDLE GetCurrentThread()
{
    return reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-2));
}
