// SPDX-License-Identifier: MIT
// Modal dialogs: a loop within another, and a message's way to its handler.
#include "framework/afxwin.h"
#include "tests/dialogs/testIds.h"
#include "tests/support/WindowProbe.h"

#include <gmock/gmock.h>

constexpr UINT WM_STEP = WM_USER + 1;
constexpr UINT WM_ADD = WM_USER + 2; // gives the sum of its parameters

// Driven by a list of steps. Each is a posted message of its own, posted before the one in front runs: when
// that opens a nested loop (a dialog, a message box, a handler that pumps) the next one runs inside it.
class TestDialog : public CDialog
{
public:
    using Step = std::function<void()>;

    explicit TestDialog(UINT id = IDD_CONTROLS, CWnd* parent = nullptr) : CDialog(id, parent) {}

    INT_PTR Run(std::vector<Step> steps)
    {
        mSteps = std::move(steps);
        const INT_PTR result = DoModal();
        EXPECT_EQ(mTaken, mSteps.size()) << "the dialog ended before its last step";
        return result;
    }

    std::vector<std::string> mTrace; // what was called, in order

protected:
    BOOL OnInitDialog() override
    {
        PostMessageW(m_hWnd, WM_STEP, 0, 0);
        return CDialog::OnInitDialog();
    }
    void OnOK() override
    {
        mTrace.emplace_back("OnOK");
        CDialog::OnOK();
    }
    void DoDataExchange(CDataExchange* pDX) override
    {
        mTrace.emplace_back(pDX->m_bSaveAndValidate ? "save" : "fill");
    }
    afx_msg void OnWork() { mTrace.emplace_back("work"); }
    afx_msg LRESULT OnAdd(WPARAM wParam, LPARAM lParam) { return static_cast<LRESULT>(wParam) + lParam; }
    afx_msg LRESULT OnStep(WPARAM, LPARAM)
    {
        if (mTaken == mSteps.size())
            return 0;
        PostMessageW(m_hWnd, WM_STEP, 0, 0);
        mSteps[mTaken++]();
        return 0;
    }
    DECLARE_MESSAGE_MAP()

private:
    std::vector<Step> mSteps;
    std::size_t mTaken = 0;
};

BEGIN_MESSAGE_MAP(TestDialog, CDialog)
ON_BN_CLICKED(IDC_PUSH, OnWork)
ON_MESSAGE(WM_STEP, OnStep)
ON_MESSAGE(WM_ADD, OnAdd)
END_MESSAGE_MAP()

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

TEST(ModalDialog, DisablesItsParentAndReturnsBeforeItThoughThatEndsFirst)
{
    TestDialog outer;
    TestDialog inner(IDD_CONTROLS, &outer);
    bool returned = false;
    const INT_PTR result = outer.Run({
        [&]
        {
            EXPECT_EQ(inner.DoModal(), 2);
            returned = true;
        },
        [&]
        {
            EXPECT_TRUE(outer.EnableWindow(FALSE)) << "it was disabled";
            EXPECT_FALSE(inner.EnableWindow(TRUE));
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
            EXPECT_EQ(send(WM_USER + 9, 0), 0) << "the result of another message";
            send(WM_COMMAND, MAKEWPARAM(IDC_PUSH, BN_CLICKED));
            send(WM_COMMAND, MAKEWPARAM(IDC_PUSH, 5)); // a notification without a row
            send(WM_COMMAND, IDOK);
        },
    });
    EXPECT_THAT(dialog.mTrace, testing::ElementsAre("fill", "work", "OnOK", "save"));
}

TEST(Application, ServesTheCommandsThatTheDialogDoesNot)
{
    TestApp app;
    ASSERT_EQ(AfxGetApp(), &app);
    TestDialog dialog;
    app.m_pMainWnd = &dialog;
    dialog.Run({
        [&] { SendMessageW(dialog.m_hWnd, WM_COMMAND, ID_HELP, 0); },
        [] {}, // what was posted before it comes first
        [&]
        {
            EXPECT_EQ(TextOf(TopWindow()), L"Test");
            EXPECT_EQ(TextOf(GetDlgItem(TopWindow(), kMessageBoxText)), L"Failed to launch help.");
            SendMessageW(TopWindow(), WM_COMMAND, IDOK, 0);
        },
        [&] { dialog.EndDialog(1); },
    });
}
