// SPDX-License-Identifier: MIT
// The queue, on bare window calls; framework_tests has the loops.
#include "foundation/Kelvane.h"
#include "tests/dialogs/ScriptedDialog.h"

#include <gmock/gmock.h>

#include <chrono>
#include <thread>

using namespace testing;

TEST(Queue, KeepsTheOrderAndDropsWhatTheDialogLeavesBehind)
{
    std::vector<WPARAM> noted;
    ScriptedDialog script;
    script.serve = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM)
    {
        if (message != WM_NOTE)
            return false;
        noted.push_back(wParam);
        if (wParam == 3)
            EndDialog(dialog, 1);
        return true;
    };
    HWND gone = nullptr;
    script.body = [&](HWND dialog)
    {
        gone = dialog;
        for (WPARAM i = 1; i <= 5; ++i)
            EXPECT_TRUE(PostMessageW(dialog, WM_NOTE, i, 0));
        EXPECT_TRUE(noted.empty()) << "a post must not call";
    };
    script.Run();
    Pump();
    EXPECT_THAT(noted, ElementsAre(1, 2, 3));
    EXPECT_FALSE(PostMessageW(gone, WM_NOTE, 6, 0));
    EXPECT_EQ(SendMessageW(gone, WM_NOTE, 7, 0), 0);
    EXPECT_FALSE(EndDialog(gone, 1));
    EXPECT_FALSE(EnableWindow(gone, TRUE));
    EXPECT_FALSE(SetWindowTextW(gone, L""));
}

TEST(Queue, LibrarysPumpServesTheKeysOfADialogWhoseLoopIsHeldUp)
{
    std::vector<int> commands;
    ScriptedDialog script;
    script.serve = [&](HWND, UINT message, WPARAM wParam, LPARAM)
    {
        if (message == WM_COMMAND)
            commands.push_back(LOWORD(wParam));
        return message == WM_COMMAND;
    };
    script.body = [&](HWND dialog)
    {
        const HWND line = GetDlgItem(dialog, IDC_LINE);
        SetFocus(line);
        commands.clear();
        PostMessageW(line, WM_KEYDOWN, VK_RETURN, 0);
        PostMessageW(line, WM_KEYDOWN, VK_ESCAPE, 0);
        PumpMessages(nullptr, 0);
        std::erase_if(commands, [](int id) { return id != IDC_DEFAULT && id != IDCANCEL; });
        EXPECT_EQ(commands, (std::vector<int>{IDC_DEFAULT, IDCANCEL}));
        EndDialog(dialog, 1);
    };
    script.Run();
}

// The last post of each is one into a loop that sleeps.
TEST(Queue, LosesNothingOfSevenThreads)
{
    constexpr std::size_t kThreads = 7; // odd, or every other wake would do
    constexpr LPARAM kPosts = 1000;
    std::vector<LPARAM> next(kThreads, 0);
    std::size_t received = 0;
    std::vector<std::jthread> threads;
    ScriptedDialog script;
    script.serve = [&](HWND dialog, UINT message, WPARAM thread, LPARAM number)
    {
        if (message != WM_NOTE)
            return false;
        EXPECT_EQ(number, next[thread]++) << "of thread " << thread;
        if (++received == kThreads * kPosts)
            EndDialog(dialog, 1);
        return true;
    };
    script.body = [&](HWND dialog)
    {
        for (std::size_t thread = 0; thread < kThreads; ++thread)
            threads.emplace_back(
                [dialog, thread]
                {
                    for (LPARAM number = 0; number < kPosts; ++number)
                    {
                        if (number == kPosts - 1)
                            std::this_thread::sleep_for(std::chrono::milliseconds(100 + 50 * thread));
                        PostMessageW(dialog, WM_NOTE, thread, number);
                    }
                });
    };
    script.Run();
    EXPECT_THAT(next, Each(kPosts));
}
