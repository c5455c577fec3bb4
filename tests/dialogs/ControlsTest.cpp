// SPDX-License-Identifier: MIT
// What controls do with messages; the real system answers the same.
#include "tests/dialogs/ScriptedDialog.h"

#include <gtest/gtest.h>

TEST(EditControl, KeepsTheTextItIsGivenAndCountsItsLines)
{
    // One after the other: a text that only grows at its end goes a way of its own.
    const std::pair<const wchar_t*, LRESULT> cases[] = {
        {L"one", 1}, {L"one\r\n", 2},  {L"one\r\ntwo", 2}, // the caret can stand after the last break
        {L"one", 1}, {L"", 1},         {L"on", 1},         {L"on\r", 1},
        {L"on", 1},  {L"\r\n\r\n", 3}, {L"\r\n\r\na", 3},  {L"a\r\nb\r\nc", 3},
    };
    InDialog(
        [&](HWND dialog)
        {
            const HWND log = GetDlgItem(dialog, IDC_LOG);
            for (const auto& [text, lines] : cases)
            {
                EXPECT_TRUE(SetWindowTextW(log, text));
                EXPECT_EQ(TextOf(log), text);
                EXPECT_EQ(SendMessageW(log, EM_GETLINECOUNT, 0, 0), lines) << TextOf(log);
            }
            EXPECT_TRUE(SetWindowTextW(log, nullptr));
            EXPECT_EQ(TextOf(log), L"");

            const HWND line = GetDlgItem(dialog, IDC_LINE);
            SetWindowTextW(line, L"a\r\nb");
            EXPECT_EQ(SendMessageW(line, EM_GETLINECOUNT, 0, 0), 1) << "a box of one line has one";
            SetWindowTextW(line, L"abcdef");
            wchar_t buffer[] = L"-----";
            EXPECT_EQ(GetWindowTextW(line, buffer, 4), 3);
            EXPECT_STREQ(buffer, L"abc");
            EXPECT_EQ(buffer[4], L'-') << "wrote past the capacity";
        });
}

TEST(AnyControl, HasTheFocusUnlessItIsDisabled)
{
    InDialog(
        [](HWND dialog)
        {
            const HWND push = GetDlgItem(dialog, IDC_PUSH);
            EnableWindow(push, FALSE);
            EXPECT_EQ(SetFocus(push), nullptr);
            EnableWindow(push, TRUE);
            Send(dialog, IDC_BOX, BM_CLICK);
            EXPECT_EQ(FocusedControl(), GetDlgItem(dialog, IDC_BOX)) << "a click gives the focus";
            SetFocus(push);
            EnableWindow(push, FALSE);
            EXPECT_EQ(FocusedControl(), nullptr) << "a disabled control has no focus";
        });
}
