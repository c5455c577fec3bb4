// SPDX-License-Identifier: MIT
#include "tests/support/AgentFolder.h"
#include "tests/support/ProgramFolder.h"

#include <process.h>

#include <gtest/gtest.h>

TEST(Process, SplitsTheCommandLineAsTheCRuntimeDoes)
{
    const std::pair<const wchar_t*, const char*> rows[] = {
        // the words, one a line

        {L"a b\tc", "a\nb\nc\n"},
        {L"  \"a b\"   c", "a b\nc\n"},
        {L"\"\" x", "\nx\n"},                           // an empty word
        {L"a\"b c\"d", "ab cd\n"},                      // quotes inside a word
        {L"a\\b \\\\share\\x", "a\\b\n\\\\share\\x\n"}, // no quote after them: backslashes are themselves
        {L"\\\"a\\\"", "\"a\"\n"},                      // quotes taken
        {L"\"a\\\\\" b", "a\\\nb\n"},                   // an even number: the quote ends the word
        {L"\"a\\\\\\\"b\" c", "a\\\"b\nc\n"},           // an odd number: it does not
        {L"\"a\"\"b\" c", "a\"b\nc\n"},                 // doubled inside quotes
        {L"\"a\"\"", "a\"\n"},                          // the doubled one ends the line
        {L"\"open end", "open end\n"},
    };
    const AgentFolder folder;
    for (const auto& [line, words] : rows)
    {
        // The relative name shows that the working directory is the one asked for.
        const ChildProcess agent(L"\"" + folder.Agent().wstring() + L"\" out.txt arguments " + line,
                                 folder.Path());
        EXPECT_EQ(agent.ExitCode(), 0U);
        EXPECT_EQ(folder.Read("out.txt"), words);
    }
}

TEST(Process, ExitCodeIsThereOnceItHasEnded)
{
    const AgentFolder folder;
    const std::string name = fs::path(UniqueName(L"exit")).string();
    const ChildProcess agent = folder.Start({"await:" + name + ":none", "exit:7"});
    DWORD code = 0;
    EXPECT_EQ(WaitForSingleObject(agent.Handle(), 100), DWORD{WAIT_TIMEOUT});
    EXPECT_TRUE(GetExitCodeProcess(agent.Handle(), &code));
    EXPECT_EQ(code, DWORD{STILL_ACTIVE});
    agent.Kill();
    EXPECT_EQ(agent.ExitCode(), RunsOnWindows() ? 1U : 137U); // as a shell tells of SIGKILL
    EXPECT_FALSE(TerminateProcess(nullptr, 1) || GetExitCodeProcess(nullptr, &code));
    EXPECT_EQ(folder.Run({"exit:7"}).exitCode, 7U);
}

TEST(Process, SaysWhyItCouldNotStart)
{
    const AgentFolder folder;
    folder.Write("plain", "text");
    folder.Write("runnable", "text");
    fs::permissions(folder.Path() / "runnable", fs::perms::owner_all);
    const auto quoted = [&](const wchar_t* name) { return L'"' + (folder.Path() / name).wstring() + L'"'; };
    // Windows knows no right to run a file, and Wine no error of its own for a path through a file.
    const std::pair<std::wstring, DWORD> rows[] = {
        {quoted(L"missing") + L" a", ERROR_FILE_NOT_FOUND},
        {quoted(L"plain"), RunsOnWindows() ? ERROR_BAD_EXE_FORMAT : ERROR_ACCESS_DENIED},
        {quoted(L"runnable"), ERROR_BAD_EXE_FORMAT},
        {quoted(L"plain/x"), RunsOnWindows() ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND},
        {quoted(L""), ERROR_ACCESS_DENIED},
        {L"\"\"", RunsOnWindows() ? ERROR_INVALID_PARAMETER : ERROR_FILE_NOT_FOUND},
        {L"tavo-program-that-nobody-has", ERROR_FILE_NOT_FOUND},
    };
    for (const auto& [line, error] : rows)
        EXPECT_EQ(ChildProcess(line, folder.Path()).Error(), error) << line;
    for (const wchar_t* none : {L"missing", L"plain"})
        EXPECT_EQ(ChildProcess(L"\"" + folder.Agent().wstring() + L"\"", folder.Path() / none).Error(),
                  DWORD{ERROR_DIRECTORY});
}

TEST(Thread, RunsWithItsArgumentUnderAnIdAndALastErrorOfItsOwn)
{
    struct Started
    {
        HANDLE done;
        DWORD id = 0;
    } started = {CreateEventW(nullptr, TRUE, FALSE, UniqueName(L"thread").c_str())}; // clears our last error
    const auto run = [](void* argument) __cdecl
    {
        auto& thread = *static_cast<Started*>(argument);
        thread.id = GetCurrentThreadId();
        CloseHandle(nullptr); // which fails
        SetEvent(thread.done);
    };
    EXPECT_NE(_beginthread(run, 0, &started), static_cast<std::uintptr_t>(-1));
    EXPECT_EQ(WaitForSingleObject(started.done, 60000), DWORD{WAIT_OBJECT_0});
    EXPECT_NE(started.id, 0U);
    EXPECT_NE(started.id, GetCurrentThreadId());
    EXPECT_NE(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    CloseHandle(started.done);
}

TEST(Clock, TicksCountTheMillisecondsOfASleep)
{
    const DWORD start = GetTickCount();
    Sleep(300);
    const DWORD passed = GetTickCount() - start;
    // Wine's ticks come from its server, which lags on a busy machine.
    EXPECT_GE(passed, 200U);
    EXPECT_LT(passed, 5000U);
}
