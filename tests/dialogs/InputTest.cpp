// SPDX-License-Identifier: MIT
// How what a person does reaches the program: of the layer's own inside, so on Linux only.
#include "platform/dialogs/UserInput.h"
#include "tests/dialogs/ScriptedDialog.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace platform;
using testing::ElementsAre;

static Window& ControlOfTop(UINT id)
{
    return **std::ranges::find(
        TopDialog()->children, id, [](const auto& control) { return control->id; });
}

// Runs a body that acts as a person, who then closes the dialog; gives the commands, 0 for a note, in order.
static std::vector<int> CommandsAfter(const std::function<void(HWND)>& body)
{
    std::vector<int> seen;
    ScriptedDialog script;
    script.serve = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM)
    {
        if (message == WM_COMMAND)
            seen.push_back(LOWORD(wParam));
        if (message == WM_NOTE)
            seen.push_back(0);
        if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL)
            EndDialog(dialog, 1);
        return message == WM_NOTE;
    };
    script.body = [&](HWND dialog)
    {
        body(dialog);
        UserClosed(*TopDialog());
    };
    script.Run();
    return seen;
}

TEST(Input, IsDroppedWhenItsControlCannotTakeItAnyMore)
{
    const auto disable = [](HWND dialog)
    {
        UserClicked(ControlOfTop(IDC_PUSH));
        UserClicked(ControlOfTop(IDC_BOX));
        UserPressed(*TopDialog(), VK_RETURN);
        for (const int id : {IDC_PUSH, IDC_DEFAULT})
            EnableWindow(GetDlgItem(dialog, id), FALSE);
    };
    EXPECT_THAT(CommandsAfter(disable), ElementsAre(IDC_BOX, IDCANCEL));
    const auto openAnother = [](HWND dialog)
    {
        UserClicked(ControlOfTop(IDC_PUSH));
        UserClosed(*TopDialog());
        const auto pump = [](HWND window)
        {
            Pump();
            EndDialog(window, 1);
        };
        ScriptedDialog{.body = pump, .owner = dialog}.Run();
        PostMessageW(dialog, WM_NOTE, 0, 0);
    };
    EXPECT_THAT(CommandsAfter(openAnother), ElementsAre(0, IDCANCEL)) << "it was disabled under another one";
}

TEST(Input, EndsWhereAProgramStopsReading)
{
    CommandsAfter(
        [](HWND dialog)
        {
            UserTyped(ControlOfTop(IDC_LINE), {L'0', L'\0', L'a'});
            SetWindowTextW(GetDlgItem(dialog, IDC_LINE), L"0");
            EXPECT_EQ(TextOf(GetDlgItem(dialog, IDC_LINE)), L"0");
        });
}

TEST(Input, StaysWhereOnlyPostedMessagesAndPaintingAreAskedFor)
{
    const auto serveSome = [](HWND dialog)
    {
        UserClicked(ControlOfTop(IDC_PUSH));
        PostMessageW(dialog, WM_NOTE, 0, 0);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE | PM_QS_POSTMESSAGE | PM_QS_PAINT))
            DispatchMessageW(&message);
        PostMessageW(dialog, WM_NOTE, 0, 0);
    };
    EXPECT_THAT(CommandsAfter(serveSome), ElementsAre(0, 0, IDC_PUSH, IDCANCEL));
}
