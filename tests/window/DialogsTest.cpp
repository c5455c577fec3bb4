// SPDX-License-Identifier: MIT
// Dialogs, message boxes and the queue, on bare window calls; framework_tests has the rest of the loops.
#include "foundation/Kelvane.h"
#include "tests/support/WindowProbe.h"
#include "tests/window/ScriptedDialog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

using testing::Each;
using testing::ElementsAre;

namespace
{

constexpr UINT WM_NOTE = WM_USER + 2;
constexpr int kMessageBoxText = 0xFFFF;

} // namespace

TEST(Dialog, FirstTabStopIsAnnouncedAndHasTheFocus)
{
    ScriptedDialog script;
    HWND announced = nullptr;
    script.serve = [&](HWND, UINT message, WPARAM wParam, LPARAM)
    {
        if (message == WM_INITDIALOG)
            announced = reinterpret_cast<HWND>(wParam);
        return false;
    };
    script.body = [&](HWND dialog)
    {
        EXPECT_EQ(announced, GetDlgItem(dialog, IDC_LOG)) << "the label before it is no tab stop";
        EXPECT_EQ(FocusedControl(), announced);
        EXPECT_EQ(TopWindow(), dialog);
        EXPECT_EQ(SendMessageW(dialog, DM_GETDEFID, 0, 0), MAKELONG(IDC_DEFAULT, DC_HASDEFID));
        EndDialog(dialog, 1);
    };
    EXPECT_EQ(script.Run(), 1);
}

TEST(Dialog, IsNotMadeOfAControlThatDoesNotExist)
{
    ScriptedDialog script;
    script.templateId = IDD_UNKNOWN_CONTROL;
    script.body = [](HWND dialog) { EndDialog(dialog, 1); };
    EXPECT_EQ(script.Run(), -1);
}

TEST(Dialog, AnswersWithTheResultLeftByItsProcedure)
{
    ScriptedDialog script;
    script.serve = [](HWND dialog, UINT message, WPARAM, LPARAM)
    {
        if (message != WM_NOTE)
            return false;
        SetWindowLongPtrW(dialog, DWLP_MSGRESULT, 1234);
        return true;
    };
    script.body = [](HWND dialog)
    {
        EXPECT_EQ(SendMessageW(dialog, WM_NOTE, 0, 0), 1234);
        EXPECT_EQ(SendMessageW(dialog, WM_NOTE + 1, 0, 0), 0) << "a result of another message was given";
        EndDialog(dialog, 1);
    };
    script.Run();
}

TEST(Dialog, KeepsTheIconsItIsGiven)
{
    InDialog(
        [](HWND dialog)
        {
            const HICON icon = LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_TWO_SIZES));
            ASSERT_NE(icon, nullptr);
            EXPECT_EQ(SendMessageW(dialog, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon)), 0);
            EXPECT_EQ(SendMessageW(dialog, WM_SETICON, ICON_BIG, 0), reinterpret_cast<LRESULT>(icon));
        });
    EXPECT_EQ(LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(4711)), nullptr);
}

TEST(BoxWithAMessage, GivesTheAnswer)
{
    struct Case
    {
        UINT type;
        int pressed;
        int answer;
    };
    const Case cases[] = {
        {MB_OK, IDOK, IDOK},
        {MB_OKCANCEL, IDCANCEL, IDCANCEL},
        {MB_YESNO | MB_ICONQUESTION, IDYES, IDYES},
        {MB_YESNO | MB_DEFBUTTON2, IDNO, IDNO},
        {MB_YESNOCANCEL, IDNO, IDNO},
    };
    for (const Case& row : cases)
    {
        ScriptedDialog script;
        script.serve = [&](HWND owner, UINT message, WPARAM, LPARAM)
        {
            if (message != WM_NOTE)
                return false;
            const HWND box = TopWindow();
            EXPECT_EQ(TextOf(box), L"Caption");
            EXPECT_EQ(TextOf(GetDlgItem(box, kMessageBoxText)), L"Text\nof two lines");
            EXPECT_FALSE(IsEnabled(owner));
            PostMessageW(box, WM_COMMAND, MAKEWPARAM(row.pressed, BN_CLICKED), 0);
            return true;
        };
        script.body = [&](HWND dialog)
        {
            PostMessageW(dialog, WM_NOTE, 0, 0);
            EXPECT_EQ(MessageBoxW(dialog, L"Text\nof two lines", L"Caption", row.type), row.answer);
            EXPECT_TRUE(IsEnabled(dialog));
            EndDialog(dialog, 1);
        };
        script.Run();
    }
}

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
}

TEST(Queue, PeekCanLookWithoutTaking)
{
    InDialog(
        [](HWND dialog)
        {
            Pump();
            MSG message;
            PostMessageW(dialog, WM_NOTE, 1, 2);
            for (const UINT remove : {PM_NOREMOVE, PM_REMOVE})
            {
                ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, remove));
                EXPECT_EQ(message.hwnd, dialog);
                EXPECT_EQ(message.message, WM_NOTE);
                EXPECT_EQ(message.wParam, 1u);
                EXPECT_EQ(message.lParam, 2);
            }
            EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
        });
}

TEST(Queue, QuitComesBehindWhatWasPostedAndEndsTheLoop)
{
    bool isNoted = false;
    ScriptedDialog script;
    script.serve = [&](HWND, UINT message, WPARAM, LPARAM) { return message == WM_NOTE && (isNoted = true); };
    script.body = [&](HWND dialog)
    {
        PostQuitMessage(5);
        PostMessageW(dialog, WM_NOTE, 0, 0);
    };
    script.Run();
    EXPECT_TRUE(isNoted);
    MSG message;
    ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) << "the outer loop has to hear of it, too";
    EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(message.wParam, 5u);
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

TEST(Queue, PostWakesALoopThatSleeps)
{
    using Clock = std::chrono::steady_clock;
    constexpr int kPosts = 20;
    std::vector<Clock::duration> delays;
    std::atomic<Clock::rep> posted{0};
    std::thread poster;
    ScriptedDialog script;
    script.serve = [&](HWND dialog, UINT message, WPARAM, LPARAM)
    {
        if (message != WM_NOTE)
            return false;
        delays.push_back(Clock::now().time_since_epoch() - Clock::duration(posted.load()));
        if (delays.size() == kPosts)
            EndDialog(dialog, 1);
        return true;
    };
    script.body = [&](HWND dialog)
    {
        poster = std::thread(
            [&posted, dialog]
            {
                for (int i = 0; i < kPosts; ++i)
                {
                    std::this_thread::sleep_for(std::chrono::milliseconds(10)); // the loop sleeps again
                    posted = Clock::now().time_since_epoch().count();
                    PostMessageW(dialog, WM_NOTE, 0, 0);
                }
            });
    };
    script.Run();
    poster.join();
    EXPECT_THAT(delays, Each(testing::Lt(std::chrono::seconds(2))));
}

TEST(Queue, LosesNothingOfEightThreads)
{
    constexpr std::size_t kThreads = 8;
    constexpr LPARAM kPosts = 1000;
    std::vector<LPARAM> next(kThreads, 0);
    std::size_t received = 0;
    std::vector<std::thread> threads;
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
                        PostMessageW(dialog, WM_NOTE, thread, number);
                });
    };
    script.Run();
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(next, Each(kPosts));
}

TEST(StringResource, IsFoundCutAndMissed)
{
    const HINSTANCE module = GetModuleHandleW(nullptr);
    wchar_t text[64] = {};
    EXPECT_EQ(LoadStringW(module, IDS_FIRST, text, 64), 5);
    EXPECT_STREQ(text, L"First");
    EXPECT_EQ(LoadStringW(module, IDS_FIRST, text, 3), 2);
    EXPECT_STREQ(text, L"Fi");
    LoadStringW(module, IDS_ASTRAL, text, 64);
    EXPECT_STREQ(text, L"\U0001F600!");
    EXPECT_EQ(LoadStringW(module, IDS_FIRST + 2, text, 64), 0) << "an empty place of its block";
    EXPECT_EQ(LoadStringW(module, 4711, text, 64), 0);
}
