// SPDX-License-Identifier: MIT
#include "tests/framework/TestDialog.h"

#include <gtest/gtest.h>

BEGIN_MESSAGE_MAP(TestDialog, CDialog)
ON_WM_PAINT()
ON_WM_QUERYDRAGICON()
ON_BN_CLICKED(IDC_END, OnEnd)
ON_BN_CLICKED(IDC_WORK, OnWork)
ON_MESSAGE(WM_STEP, OnStep)
ON_MESSAGE(WM_ADD, OnAdd)
END_MESSAGE_MAP()

INT_PTR TestDialog::Run(std::vector<Step> steps)
{
    mSteps.assign(steps.begin(), steps.end());
    const INT_PTR result = DoModal();
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
    PostMessageW(m_hWnd, WM_STEP, 0, 0);
    if (mOnOpen)
        mOnOpen();
    return !mOnOpen;
}

void TestDialog::OnOK()
{
    mTrace.emplace_back("OnOK");
    CDialog::OnOK();
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

std::wstring ReadAndCloseMessageBox()
{
    constexpr int kMessageBoxText = 0xFFFF;
    const HWND box = TopWindow();
    std::wstring text = TextOf(GetDlgItem(box, kMessageBoxText));
    SendMessageW(box, WM_COMMAND, IDOK, 0);
    return text;
}
