// SPDX-License-Identifier: MIT
// Modal dialogs: a loop within another, a message's way to its handler, numbers between members and boxes.
#include "framework/afxwin.h"
#include "tests/dialogs/testIds.h"
#include "tests/support/WindowProbe.h"

#include <gmock/gmock.h>

#include <deque>
#include <optional>

constexpr UINT WM_STEP = WM_USER + 1;
constexpr UINT WM_ADD = WM_USER + 2; // gives the sum of its parameters

// A step that only lets what was posted before it come first.
static void Nothing() {}

// Driven by a list of steps. Each is a posted message of its own, posted before the one in front runs: when
// that opens a nested loop (a dialog, a message box, a handler that pumps) the next one runs inside it.
class TestDialog : public CDialog
{
public:
    using Step = std::function<void()>;

    explicit TestDialog(UINT id = IDD_CONTROLS, CWnd* parent = nullptr) : CDialog(id, parent) {}

    INT_PTR Run(std::vector<Step> steps)
    {
        mSteps.assign(steps.begin(), steps.end());
        const INT_PTR result = DoModal();
        EXPECT_TRUE(mSteps.empty()) << "the dialog ended before its last step";
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
        if (mSteps.empty())
            return 0;
        PostMessageW(m_hWnd, WM_STEP, 0, 0);
        const Step step = std::move(mSteps.front());
        mSteps.pop_front();
        step();
        return 0;
    }
    DECLARE_MESSAGE_MAP()

private:
    std::deque<Step> mSteps;
};

BEGIN_MESSAGE_MAP(TestDialog, CDialog)
ON_WM_PAINT()
ON_BN_CLICKED(IDC_PUSH, OnWork)
ON_MESSAGE(WM_STEP, OnStep)
ON_MESSAGE(WM_ADD, OnAdd)
END_MESSAGE_MAP()

static std::wstring ReadAndCloseMessageBox()
{
    constexpr int kMessageBoxText = 0xFFFF;
    const HWND box = TopWindow();
    std::wstring text = TextOf(GetDlgItem(box, kMessageBoxText));
    SendMessageW(box, WM_COMMAND, IDOK, 0);
    return text;
}

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

class ExchangeDialog : public TestDialog
{
public:
    CStringW mBefore;
    std::uint32_t mNumber = 389;
    CStringW mAfter;

protected:
    void DoDataExchange(CDataExchange* pDX) override
    {
        DDX_Text(pDX, IDC_LOG, mBefore);
        DDX_Text(pDX, IDC_LINE, mNumber);
        DDX_Text(pDX, IDC_HIDDEN, mAfter);
    }
};

TEST(ModalDialog, FailsWithoutATemplate)
{
    TestDialog dialog(4711);
    EXPECT_EQ(dialog.DoModal(), -1);
}

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

TEST(ModalDialog, PaintsAreOver)
{
    TestDialog dialog;
    dialog.Run({
        [&]
        {
            Pump(); // without an end where OnPaint leaves something to paint
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
        Nothing,
        [&]
        {
            EXPECT_EQ(TextOf(TopWindow()), L"Test");
            EXPECT_EQ(ReadAndCloseMessageBox(), L"Failed to launch help.");
        },
        [&] { dialog.EndDialog(1); },
    });
}

TEST(DataExchange, TakesNumbersOf32BitsAndStaysOpenWithAnyOtherTextSelected)
{
    std::vector<std::pair<std::wstring, std::optional<std::uint32_t>>> cases = {
        {L"0", 0}, {L"4294967295", UINT32_MAX}, {L" \t636 ", 636}, {L"0000000000000007", 7}};
    // One is 1 in 64 bits, the last has digits of another script.
    for (const wchar_t* refused : {L"", L"  ", L"ldap", L"-1", L"4294967296", L"18446744073709551617",
                                   L"389x", L"3 89", L"0x10", L"1.5", L"\xFF13\xFF18\xFF19"})
        cases.emplace_back(refused, std::nullopt);
    ExchangeDialog dialog; // opened again and again
    for (const auto& [text, number] : cases)
    {
        dialog.mBefore = dialog.mAfter = L"";
        dialog.mNumber = 389;
        std::vector<TestDialog::Step> steps = {
            [&, &text = text]
            {
                SetWindowTextW(::GetDlgItem(dialog.m_hWnd, IDC_LOG), L"before");
                SetWindowTextW(::GetDlgItem(dialog.m_hWnd, IDC_LINE), text.c_str());
                SetWindowTextW(::GetDlgItem(dialog.m_hWnd, IDC_HIDDEN), L"after");
                SendMessageW(dialog.m_hWnd, WM_COMMAND, IDOK, 0);
            },
            Nothing,
            [&]
            {
                EXPECT_EQ(TextOf(TopWindow()), L"framework_tests"); // no application tells its name
                EXPECT_TRUE(dialog.EnableWindow(FALSE)) << "it was disabled";
                EXPECT_EQ(ReadAndCloseMessageBox(), L"Please enter a positive integer.");
            },
            [&, &text = text]
            {
                EXPECT_EQ(FocusedControl(), ::GetDlgItem(dialog.m_hWnd, IDC_LINE));
                EXPECT_EQ(SelectionOf(FocusedControl()), text);
                dialog.EndDialog(IDCANCEL);
            },
        };
        if (number)
            steps.resize(1);
        EXPECT_EQ(dialog.Run(steps), number ? IDOK : IDCANCEL) << text;
        EXPECT_STREQ(dialog.mBefore, L"before");
        EXPECT_EQ(dialog.mNumber, number.value_or(389)) << text;
        EXPECT_STREQ(dialog.mAfter, number ? L"after" : L"") << "the exchange ends with a refusal";
    }
}
