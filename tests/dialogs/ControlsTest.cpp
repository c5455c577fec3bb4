// SPDX-License-Identifier: MIT
// What controls do with messages; the real system answers the same.
#include "tests/dialogs/ScriptedDialog.h"

#include <gtest/gtest.h>

#include <vector>

TEST(EditControl, KeepsTheTextItIsGivenAndCountsItsLines)
{
    struct Case
    {
        const wchar_t* text;
        LRESULT lines;
    };
    // One after the other: a text that only grows at its end goes a way of its own.
    const Case cases[] = {
        {L"one", 1}, {L"one\r\n", 2},  {L"one\r\ntwo", 2}, // the caret can stand after the last break
        {L"one", 1}, {L"", 1},         {L"on", 1},         {L"on\r", 1},
        {L"on", 1},  {L"\r\n\r\n", 3}, {L"\r\n\r\na", 3},  {L"a\r\nb\r\nc", 3},
    };
    InDialog(
        [&](HWND dialog)
        {
            const HWND log = GetDlgItem(dialog, IDC_LOG);
            for (const Case& row : cases)
            {
                EXPECT_TRUE(SetWindowTextW(log, row.text));
                EXPECT_EQ(TextOf(log), row.text);
                EXPECT_EQ(SendMessageW(log, EM_GETLINECOUNT, 0, 0), row.lines) << &row - cases;
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

TEST(CheckBox, ClickTogglesItAndTellsTheDialog)
{
    std::vector<WPARAM> clicks;
    ScriptedDialog script;
    script.serve = [&](HWND, UINT message, WPARAM wParam, LPARAM)
    {
        if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED)
            clicks.push_back(wParam);
        return false;
    };
    script.body = [&](HWND dialog)
    {
        for (const LRESULT check : {BST_CHECKED, BST_UNCHECKED})
        {
            Send(dialog, IDC_BOX, BM_CLICK);
            EXPECT_EQ(Send(dialog, IDC_BOX, BM_GETCHECK), check);
        }
        Send(dialog, IDC_BOX, BM_SETCHECK, BST_CHECKED);
        EXPECT_EQ(FocusedControl(), GetDlgItem(dialog, IDC_BOX)) << "a click gives the focus";
        EndDialog(dialog, 1);
    };
    script.Run();
    EXPECT_EQ(clicks, (std::vector<WPARAM>{IDC_BOX, IDC_BOX})) << "setting it tells nobody";
}

TEST(ComboBox, HasDataAndNoSelectionAtFirst)
{
    InDialog(
        [](HWND dialog)
        {
            EXPECT_EQ(Send(dialog, IDC_CHOICE, CB_ADDSTRING, 0, L"zebra"), 0);
            EXPECT_EQ(Send(dialog, IDC_CHOICE, CB_ADDSTRING, 0, L"ant"), 1) << "not sorted";
            EXPECT_NE(Send(dialog, IDC_CHOICE, CB_SETITEMDATA, 1, 0x123456789ALL), CB_ERR);
            EXPECT_EQ(Send(dialog, IDC_CHOICE, CB_GETITEMDATA, 1), 0x123456789ALL);
            EXPECT_EQ(Send(dialog, IDC_CHOICE, CB_GETITEMDATA, 2), CB_ERR);
            EXPECT_EQ(Send(dialog, IDC_CHOICE, CB_GETCURSEL), CB_ERR);
        });
}

TEST(AnyControl, CanBeDisabledAndFocused)
{
    InDialog(
        [](HWND dialog)
        {
            const HWND line = GetDlgItem(dialog, IDC_LINE);
            const HWND push = GetDlgItem(dialog, IDC_PUSH);
            EXPECT_FALSE(EnableWindow(push, FALSE));
            EXPECT_EQ(SetFocus(push), nullptr);
            EXPECT_TRUE(EnableWindow(push, TRUE)) << "it was disabled";
            SetFocus(line);
            EXPECT_EQ(SetFocus(push), line);
            EXPECT_EQ(FocusedControl(), push);
            EnableWindow(push, FALSE);
            EXPECT_EQ(FocusedControl(), nullptr) << "a disabled control has no focus";
            EXPECT_EQ(GetAncestor(push, GA_ROOT), dialog);
            EXPECT_EQ(GetAncestor(dialog, GA_ROOT), dialog);
            EXPECT_EQ(GetDlgItem(dialog, 4711), nullptr);
        });
}
