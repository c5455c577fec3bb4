// SPDX-License-Identifier: MIT
// A dialog that is driven through messages by a list of steps. Each step is a posted message of its own, and
// the next one is posted before a step runs: when a step opens a nested loop (a dialog, a message box, a
// handler that pumps) the next one runs inside that loop.
#pragma once

#include "framework/afxwin.h"
#include "tests/framework/testIds.h"
#include "tests/support/WindowProbe.h"

#include <deque>
#include <functional>
#include <string>
#include <vector>

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
    INT_PTR Run(std::vector<Step> steps);

    // A click on a button, as a person's.
    void Click(int id);

    std::vector<std::string> mTrace; // what was called, in order
    Step mOnOpen;                    // ends the dialog while it opens
    int mPaints = 0;

protected:
    BOOL OnInitDialog() override;
    void OnOK() override;
    void DoDataExchange(CDataExchange* pDX) override;

    afx_msg void OnPaint();
    afx_msg HCURSOR OnQueryDragIcon() { return reinterpret_cast<HCURSOR>(this); }
    afx_msg void OnEnd() { EndDialog(IDC_END); }
    afx_msg void OnWork() { mTrace.emplace_back("work"); }
    afx_msg LRESULT OnStep(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnAdd(WPARAM wParam, LPARAM lParam) { return static_cast<LRESULT>(wParam) + lParam; }
    DECLARE_MESSAGE_MAP()

private:
    std::deque<Step> mSteps;
};

// What the message box on top says; it is then answered with OK.
std::wstring ReadAndCloseMessageBox();
