// SPDX-License-Identifier: MIT
// Modal dialogs: a loop within another, and the way of a message to its handler.
#include "tests/framework/TestDialog.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

BEGIN_MESSAGE_MAP(TestDialog, CDialog)
ON_WM_PAINT()
ON_WM_QUERYDRAGICON()
ON_BN_CLICKED(IDC_WORK, OnWork)
ON_MESSAGE(WM_STEP, OnStep)
ON_MESSAGE(WM_ADD, OnAdd)
END_MESSAGE_MAP()

namespace
{

class TestApp : public CWinApp
{
public:
    TestApp() : CWinApp(L"Test") {}

protected:
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(TestApp, CWinApp)
ON_COMMAND(ID_HELP, CWinApp::OnHelp)
END_MESSAGE_MAP()

} // namespace

TEST(ModalDialog, FailsWithoutATemplate)
{
    TestDialog dialog(4711);
    EXPECT_EQ(dialog.DoModal(), -1);
}

TEST(ModalDialog, DisablesItsParentAndReturnsBeforeItThoughThatEndsFirst)
{
    TestDialog outer;
    TestDialog inner(IDD_PLAIN, &outer);
    bool returned = false;
    const INT_PTR result = outer.Run({
        [&]
        {
            EXPECT_EQ(inner.DoModal(), 2);
            returned = true;
        },
        [&]
        {
            EXPECT_TRUE(!IsEnabled(outer.m_hWnd) && IsEnabled(inner.m_hWnd));
            outer.EndDialog(1);
        },
        [&]
        {
            EXPECT_EQ(TopWindow(), inner.m_hWnd);
            inner.EndDialog(2);
        },
    });
    EXPECT_EQ(result, 1);
    EXPECT_TRUE(returned);
}

TEST(ModalDialog, PaintsAreOver)
{
    TestDialog dialog;
    dialog.Run({
        [&]
        {
            Pump();
            dialog.UpdateWindow();
            EXPECT_GE(dialog.mPaints, 1);
            const int paints = dialog.mPaints;
            Pump();
            dialog.UpdateWindow();
            EXPECT_EQ(dialog.mPaints, paints) << "OnPaint left something to paint";
            dialog.EndDialog(1);
        },
    });
}

TEST(MessageMap, GivesTheResultOfARowAndLeavesTheRestToTheBase)
{
    TestDialog dialog;
    const auto send = [&](UINT message, WPARAM wParam, LPARAM lParam = 0)
    { return SendMessageW(dialog.m_hWnd, message, wParam, lParam); };
    dialog.Run({
        [&]
        {
            // The second needs all 64 bits.
            EXPECT_EQ(send(WM_ADD, 1000, -1001), -1);
            EXPECT_EQ(send(WM_ADD, 1, 0x123456789ALL), 0x123456789BLL);
            EXPECT_EQ(send(WM_QUERYDRAGICON, 0), reinterpret_cast<LRESULT>(&dialog));
            EXPECT_EQ(send(WM_USER + 9, 0), 0) << "the result of another message";
            send(WM_COMMAND, MAKEWPARAM(IDC_WORK, BN_CLICKED));
            send(WM_COMMAND, MAKEWPARAM(IDC_WORK, 5)); // a notification without a row
            send(WM_COMMAND, IDOK);
        },
    });
    EXPECT_THAT(dialog.mTrace, ElementsAre("fill", "work", "OnOK", "save"));
}

TEST(Application, ServesTheCommandsThatTheDialogDoesNot)
{
    TestApp app;
    ASSERT_EQ(AfxGetApp(), &app);
    TestDialog dialog;
    app.m_pMainWnd = &dialog;
    dialog.Run({
        [&] { SendMessageW(dialog.m_hWnd, WM_COMMAND, ID_HELP, 0); },
        Nothing,
        [&]
        {
            EXPECT_EQ(TextOf(TopWindow()), L"Test");
            EXPECT_EQ(ReadAndCloseMessageBox(), L"Failed to launch help.");
        },
        [&] { dialog.EndDialog(1); },
    });
}
