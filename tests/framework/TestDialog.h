// SPDX-License-Identifier: MIT
// A dialog that is driven through messages by a list of steps. Each step is a posted message of its own, and
// the next one is posted before a step runs: when a step opens a nested loop (a dialog, a message box, a
// handler that pumps) the next one runs inside that loop.
#pragma once

#include "framework/afxwin.h"
#include "tests/framework/testIds.h"
#include "tests/support/WindowProbe.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>

constexpr UINT WM_STEP = WM_USER + 1;
constexpr UINT WM_ADD = WM_USER + 2; // gives the sum of its parameters

// A step that only lets what was posted before it come first.
inline void Nothing() {}

class TestDialog : public CDialog
{
public:
    using Step = std::function<void()>;

    explicit TestDialog(UINT templateId = IDD_PLAIN, CWnd* parent = nullptr) : CDialog(templateId, parent) {}

    // Runs the dialog, which must not end before its last step.
    INT_PTR Run(std::vector<Step> steps)
    {
        mSteps.assign(steps.begin(), steps.end());
        const INT_PTR result = DoModal();
        EXPECT_TRUE(mSteps.empty()) << "the dialog ended before its last step";
        return result;
    }

    std::vector<std::string> mTrace; // what was called, in order
    int mPaints = 0;

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
    afx_msg void OnPaint()
    {
        ++mPaints;
        CDialog::OnPaint();
    }
    afx_msg HCURSOR OnQueryDragIcon() { return reinterpret_cast<HCURSOR>(this); }
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

// What the message box on top says; it is then answered with OK.
inline std::wstring ReadAndCloseMessageBox()
{
    constexpr int kMessageBoxText = 0xFFFF;
    const HWND box = TopWindow();
    std::wstring text = TextOf(GetDlgItem(box, kMessageBoxText));
    SendMessageW(box, WM_COMMAND, IDOK, 0);
    return text;
}
