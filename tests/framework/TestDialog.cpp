// SPDX-License-Identifier: MIT
#include "tests/framework/TestDialog.h"

#include <gtest/gtest.h>

namespace
{

constexpr int kLeftOpen = -2;
constexpr UINT kPatienceMilliseconds = 3000;
// A message box gives its text this id.
constexpr int kMessageBoxText = 0xFFFF;

} // namespace

BEGIN_MESSAGE_MAP(TestDialog, CDialog)
ON_WM_PAINT()
ON_WM_QUERYDRAGICON()
ON_BN_CLICKED(IDC_END, OnEnd)
ON_BN_CLICKED(IDC_WORK, OnWork)
ON_MESSAGE(WM_STEP, OnStep)
ON_MESSAGE(WM_ADD, OnAdd)
ON_MESSAGE(WM_TIMER, OnTimer)
END_MESSAGE_MAP()

INT_PTR TestDialog::Run(std::vector<Step> steps)
{
    mSteps.assign(steps.begin(), steps.end());
    const INT_PTR result = DoModal();
    EXPECT_NE(result, kLeftOpen) << "no step ended the dialog";
    EXPECT_TRUE(mSteps.empty()) << "the dialog ended before its last step";
    return result;
}

void TestDialog::Click(int id)
{
    SendMessageW(m_hWnd, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
                 reinterpret_cast<LPARAM>(::GetDlgItem(m_hWnd, id)));
}

void TestDialog::Press(int id, WORD key)
{
    const HWND control = ::GetDlgItem(m_hWnd, id);
    SendMessageW(m_hWnd, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
    PostMessageW(control, WM_KEYDOWN, key, 1);
}

BOOL TestDialog::OnInitDialog()
{
    CDialog::OnInitDialog();
    PostMessageW(m_hWnd, WM_STEP, 0, 0);
    if (mBeforeEnd)
        mBeforeEnd();
    return mInitResult;
}

void TestDialog::OnOK()
{
    mTrace.emplace_back("OnOK");
    CDialog::OnOK();
}

void TestDialog::OnCancel()
{
    mTrace.emplace_back("OnCancel");
    CDialog::OnCancel();
}

void TestDialog::DoDataExchange(CDataExchange* pDX)
{
    mTrace.emplace_back(pDX->m_bSaveAndValidate ? "save" : "fill");
}

void TestDialog::OnPaint()
{
    ++mPaints;
    CDialog::OnPaint();
}

HCURSOR TestDialog::OnQueryDragIcon()
{
    return reinterpret_cast<HCURSOR>(this);
}

void TestDialog::OnEnd()
{
    mTrace.emplace_back("OnEnd");
    EndDialog(IDC_END);
}

void TestDialog::OnWork()
{
    mTrace.emplace_back("work begins");
    if (mWork)
        mWork();
    mTrace.emplace_back("work ends");
}

LRESULT TestDialog::OnStep(WPARAM, LPARAM)
{
    if (mSteps.empty())
    {
        SetTimer(m_hWnd, 1, kPatienceMilliseconds, nullptr);
        return 0;
    }
    PostMessageW(m_hWnd, WM_STEP, 0, 0);
    const Step step = std::move(mSteps.front());
    mSteps.pop_front();
    step();
    return 0;
}

LRESULT TestDialog::OnAdd(WPARAM wParam, LPARAM lParam)
{
    return static_cast<LRESULT>(wParam) + lParam;
}

LRESULT TestDialog::OnTimer(WPARAM, LPARAM)
{
    EndDialog(kLeftOpen);
    return 0;
}

HWND TopWindow()
{
    return GetActiveWindow();
}

std::wstring TextOf(HWND window)
{
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)), L'\0');
    const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()) + 1);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::wstring ReadAndCloseMessageBox()
{
    const HWND box = TopWindow();
    std::wstring text = TextOf(GetDlgItem(box, kMessageBoxText));
    SendMessageW(box, WM_COMMAND, IDOK, 0);
    return text;
}

void Pump()
{
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
    {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}
