// SPDX-License-Identifier: MIT
// What controls do with messages; the real system answers the same.
#include "tests/support/WindowProbe.h"
#include "tests/window/ScriptedDialog.h"

#include <gtest/gtest.h>

TEST(EditControl, CountsTheLinesOfAText)
{
    struct Case
    {
        const wchar_t* text;
        LRESULT lines;
    };
    const Case cases[] = {
        {L"", 1},       {L"a", 1},        {L"a\r\n", 2},       // the caret can stand behind the last break
        {L"a\r\nb", 2}, {L"\r\n\r\n", 3}, {L"a\r\nb\r\nc", 3}, // also when it only lengthens the text before
    };
    InDialog(
        [&](HWND dialog)
        {
            for (const Case& row : cases)
            {
                SetWindowTextW(GetDlgItem(dialog, IDC_LOG), row.text);
                EXPECT_EQ(Send(dialog, IDC_LOG, EM_GETLINECOUNT), row.lines) << row.lines;
            }
            SetWindowTextW(GetDlgItem(dialog, IDC_LINE), L"a\r\nb");
            EXPECT_EQ(Send(dialog, IDC_LINE, EM_GETLINECOUNT), 1) << "a box of one line has one";
        });
}

TEST(EditControl, KeepsEveryTextWhetherItGrowsShrinksOrChanges)
{
    InDialog(
        [](HWND dialog)
        {
            const HWND log = GetDlgItem(dialog, IDC_LOG);
            for (const wchar_t* text : {L"one", L"one\r", L"one\r\ntwo", L"one", L"", L"on", L"two\r\n"})
            {
                EXPECT_TRUE(SetWindowTextW(log, text));
                EXPECT_EQ(TextOf(log), text);
            }
            EXPECT_TRUE(SetWindowTextW(log, nullptr));
            EXPECT_EQ(TextOf(log), L"");
        });
}

TEST(EditControl, TextOfTheProgramHasNoLimit)
{
    InDialog(
        [](HWND dialog)
        {
            const HWND log = GetDlgItem(dialog, IDC_LOG);
            std::wstring text;
            for (int i = 0; i < 20000; ++i)
                text += L"line " + std::to_wstring(i) + L"\r\n";
            SetWindowTextW(log, text.c_str());
            EXPECT_EQ(TextOf(log), text);
            EXPECT_EQ(SendMessageW(log, EM_GETLINECOUNT, 0, 0), 20001);
            EXPECT_TRUE(SendMessageW(log, EM_LINESCROLL, 0, 20001));
        });
}

TEST(EditControl, GivesAsMuchTextAsFits)
{
    InDialog(
        [](HWND dialog)
        {
            const HWND line = GetDlgItem(dialog, IDC_LINE);
            SetWindowTextW(line, L"abcdef");
            wchar_t buffer[] = L"-----";
            EXPECT_EQ(GetWindowTextW(line, buffer, 4), 3);
            EXPECT_STREQ(buffer, L"abc");
            EXPECT_EQ(buffer[4], L'-') << "wrote past the capacity";
            EXPECT_EQ(GetWindowTextLengthW(line), 6);
        });
}

TEST(EditControl, ReplacesWhatIsSelected)
{
    InDialog(
        [](HWND dialog)
        {
            const HWND line = GetDlgItem(dialog, IDC_LINE);
            SetWindowTextW(line, L"abcdef");
            SendMessageW(line, EM_SETSEL, 1, 3);
            EXPECT_EQ(SendMessageW(line, EM_GETSEL, 0, 0), MAKELONG(1, 3));
            Send(dialog, IDC_LINE, EM_REPLACESEL, FALSE, L"XYZ");
            EXPECT_EQ(TextOf(line), L"aXYZdef");
            EXPECT_EQ(SendMessageW(line, EM_GETSEL, 0, 0), MAKELONG(4, 4));
            SendMessageW(line, EM_SETSEL, 0, -1);
            EXPECT_EQ(SendMessageW(line, EM_GETSEL, 0, 0), MAKELONG(0, 7));
            SendMessageW(line, EM_LIMITTEXT, 3, 0);
            Send(dialog, IDC_LINE, EM_REPLACESEL, FALSE, L"12345");
            EXPECT_EQ(TextOf(line), L"123");
            SetWindowTextW(line, L"longer than that");
            EXPECT_EQ(TextOf(line), L"longer than that") << "the limit is of typing only";
            EXPECT_EQ(SendMessageW(line, EM_GETSEL, 0, 0), 0) << "a new text has the caret in front";
        });
}

TEST(CheckBox, ClickTogglesItAndTellsTheDialog)
{
    std::vector<WPARAM> commands;
    ScriptedDialog script;
    script.serve = [&](HWND, UINT message, WPARAM wParam, LPARAM)
    {
        if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED)
            commands.push_back(wParam);
        return false;
    };
    script.body = [&](HWND dialog)
    {
        EXPECT_EQ(Send(dialog, IDC_BOX, BM_GETCHECK), BST_UNCHECKED);
        Send(dialog, IDC_BOX, BM_CLICK);
        EXPECT_EQ(Send(dialog, IDC_BOX, BM_GETCHECK), BST_CHECKED);
        Send(dialog, IDC_BOX, BM_CLICK);
        EXPECT_EQ(Send(dialog, IDC_BOX, BM_GETCHECK), BST_UNCHECKED);
        Send(dialog, IDC_BOX, BM_SETCHECK, BST_CHECKED);
        EXPECT_EQ(Send(dialog, IDC_BOX, BM_GETCHECK), BST_CHECKED);
        EXPECT_EQ(FocusedControl(), GetDlgItem(dialog, IDC_BOX)) << "a click gives the focus";
        EndDialog(dialog, 1);
    };
    script.Run();
    EXPECT_EQ(commands, (std::vector<WPARAM>{IDC_BOX, IDC_BOX})) << "setting it tells nobody";
}

TEST(ComboBox, HoldsItemsWithDataAndOneSelection)
{
    InDialog(
        [](HWND dialog)
        {
            const HWND choice = GetDlgItem(dialog, IDC_CHOICE);
            EXPECT_EQ(SendMessageW(choice, CB_GETCURSEL, 0, 0), CB_ERR);
            EXPECT_EQ(TextOf(choice), L"");
            EXPECT_EQ(Send(dialog, IDC_CHOICE, CB_ADDSTRING, 0, L"zebra"), 0);
            EXPECT_EQ(Send(dialog, IDC_CHOICE, CB_ADDSTRING, 0, L"ant"), 1) << "not sorted";
            EXPECT_EQ(SendMessageW(choice, CB_GETITEMDATA, 1, 0), 0);
            EXPECT_NE(SendMessageW(choice, CB_SETITEMDATA, 1, 42), CB_ERR);
            EXPECT_EQ(SendMessageW(choice, CB_GETITEMDATA, 1, 0), 42);
            EXPECT_EQ(SendMessageW(choice, CB_GETITEMDATA, 2, 0), CB_ERR);
            EXPECT_EQ(SendMessageW(choice, CB_SETITEMDATA, static_cast<WPARAM>(-2), 1), CB_ERR);
            EXPECT_EQ(SendMessageW(choice, CB_SETCURSEL, 1, 0), 1);
            EXPECT_EQ(TextOf(choice), L"ant");
            EXPECT_EQ(SendMessageW(choice, CB_SETCURSEL, static_cast<WPARAM>(-1), 0), CB_ERR);
            EXPECT_EQ(SendMessageW(choice, CB_GETCURSEL, 0, 0), CB_ERR);
            EXPECT_EQ(SendMessageW(choice, CB_GETCOUNT, 0, 0), 2);
            wchar_t text[6] = {};
            EXPECT_EQ(SendMessageW(choice, CB_GETLBTEXTLEN, 0, 0), 5);
            EXPECT_EQ(SendMessageW(choice, CB_GETLBTEXT, 0, reinterpret_cast<LPARAM>(text)), 5);
            EXPECT_STREQ(text, L"zebra");
        });
}

TEST(Label, HasItsTextWithTheMarkOfItsKey)
{
    InDialog(
        [](HWND dialog)
        {
            EXPECT_EQ(TextOf(GetDlgItem(dialog, IDC_LABEL)), L"&Label:");
            EXPECT_EQ(TextOf(dialog), L"Controls");
            SetWindowTextW(dialog, L"Other");
            EXPECT_EQ(TextOf(dialog), L"Other");
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
            EXPECT_FALSE(IsEnabled(push));
            EXPECT_EQ(SetFocus(push), nullptr);
            EXPECT_TRUE(EnableWindow(push, TRUE)) << "it was disabled";
            SetFocus(line);
            EXPECT_EQ(SetFocus(push), line);
            EXPECT_EQ(FocusedControl(), push);
            EnableWindow(push, FALSE);
            EXPECT_EQ(FocusedControl(), nullptr) << "a disabled control has no focus";
            EXPECT_FALSE(IsShown(GetDlgItem(dialog, IDC_HIDDEN)));
            EXPECT_EQ(GetAncestor(push, GA_ROOT), dialog);
            EXPECT_EQ(GetAncestor(dialog, GA_ROOT), dialog);
            EXPECT_EQ(GetDlgItem(dialog, 4711), nullptr);
        });
}
