// SPDX-License-Identifier: MIT
#include "tests/framework/TestDialog.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

namespace
{

constexpr int kLeftOpen = -2;
constexpr std::chrono::seconds kPatience{60};
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
ON_MESSAGE(WM_PATIENCE_ENDED, OnPatienceEnded)
END_MESSAGE_MAP()

INT_PTR TestDialog::Run(std::vector<Step> steps)
{
    mSteps.assign(steps.begin(), steps.end());
    std::promise<void> ended;
    std::thread watch(
        [this, waiting = ended.get_future()]
        {
            if (waiting.wait_for(kPatience) == std::future_status::timeout)
                PostMessageW(mWindow, WM_PATIENCE_ENDED, 0, 0);
        });
    const INT_PTR result = DoModal();
    ended.set_value();
    watch.join();
    EXPECT_NE(result, kLeftOpen) << "no step ended the dialog";
    EXPECT_TRUE(mSteps.empty()) << "the dialog ended before its last step";
    return result;
}

void TestDialog::Click(int id)
{
    SendMessageW(m_hWnd, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
                 reinterpret_cast<LPARAM>(::GetDlgItem(m_hWnd, id)));
}

BOOL TestDialog::OnInitDialog()
{
    CDialog::OnInitDialog();
    mWindow = m_hWnd;
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
        return 0;
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

LRESULT TestDialog::OnPatienceEnded(WPARAM, LPARAM)
{
    EndDialog(kLeftOpen);
    return 0;
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
