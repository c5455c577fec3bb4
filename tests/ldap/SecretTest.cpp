// SPDX-License-Identifier: MIT
// What is left of a password in the memory of the program that ships after a test.
#include "tests/ldap/LdapConsole.h"
#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

// The program with pipes at its input and output.
class RunningProgram
{
public:
    explicit RunningProgram(const ProgramFolder& folder)
    {
        int in[2];
        int out[2];
        if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0)
            std::abort();
        mProcess = fork();
        if (mProcess == 0)
        {
            dup2(in[0], STDIN_FILENO);
            dup2(out[1], STDOUT_FILENO);
            unsetenv("DISPLAY");
            unsetenv("WAYLAND_DISPLAY");
            const rlimit anySize{RLIM_INFINITY, RLIM_INFINITY};
            if (setrlimit(RLIMIT_CORE, &anySize) != 0 || chdir(folder.Path().c_str()) != 0)
                _exit(127);
            execl(folder.Program().c_str(), folder.Program().c_str(), nullptr);
            _exit(127);
        }
        close(in[0]);
        close(out[1]);
        mInput = in[1];
        mOutput = out[0];
    }
    ~RunningProgram()
    {
        close(mInput);
        close(mOutput);
    }
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    void Type(const std::string& line) const
    {
        const std::string ended = line + "\n";
        EXPECT_EQ(write(mInput, ended.data(), ended.size()), static_cast<ssize_t>(ended.size()));
    }
    bool Says(const std::string& text)
    {
        char buffer[4096];
        while (mSaid.find(text) == std::string::npos)
        {
            const ssize_t got = read(mOutput, buffer, sizeof buffer);
            if (got <= 0)
                return false;
            mSaid.append(buffer, static_cast<std::size_t>(got));
        }
        return true;
    }
    // All that the process can write to.
    std::string Memory() const
    {
        const std::string process = "/proc/" + std::to_string(mProcess);
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

    // Whether a crash leaves an image of the memory. The process ends by it.
    bool LeavesAnImage()
    {
        int status = 0;
        kill(mProcess, SIGABRT);
        waitpid(mProcess, &status, 0);
        return !WIFSIGNALED(status) || WCOREDUMP(status);
    }

private:
    pid_t mProcess = -1;
    int mInput = -1;
    int mOutput = -1;
    std::string mSaid;
};

std::ptrdiff_t Count(const std::string& all, const std::string& part)
{
    std::ptrdiff_t count = 0;
    for (std::size_t at = all.find(part); at != std::string::npos; at = all.find(part, at + 1))
        ++count;
    return count;
}

// Each character in so many bytes, the lowest first.
std::string Widened(const std::string& text, std::size_t width)
{
    std::string wide;
    for (const char character : text)
        wide.append(1, character).append(width - 1, '\0');
    return wide;
}

TEST(Password, IsGoneFromMemoryASecondAfterTheTest)
{
    const char* port = std::getenv("TAVO_LDAP_PORT");
    if (port == nullptr || getuid() != 0)
        GTEST_SKIP() << "needs slapd, and root to read the memory of another process";
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer keeps what is given back";
#endif
    const std::string password = "wonderland";
    for (const TypedMethod& method : {kSimpleSsl, kSimplePlain, kNtlm, kDigest, kDpa, kNegotiate})
    {
        SCOPED_TRACE(method.text);
        const ProgramFolder folder;
        RunningProgram program(folder);
        for (const std::string& line : Typed({"localhost", port, "", "alice", password, method}))
            program.Type(line);
        EXPECT_TRUE(program.Says("END TEST"));
        std::this_thread::sleep_for(std::chrono::seconds(1));
        const std::string memory = program.Memory();
        EXPECT_GT(Count(memory, Widened("END TEST", sizeof(wchar_t))), 0); // what is to be found is found
        EXPECT_EQ(Count(memory, password), 0);
        EXPECT_EQ(Count(memory, Widened(password, 2)), 0);
        EXPECT_EQ(Count(memory, Widened(password, sizeof(wchar_t))), 0);
        EXPECT_FALSE(program.LeavesAnImage());
    }
}

} // namespace
