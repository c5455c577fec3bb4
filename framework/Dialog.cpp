// SPDX-License-Identifier: MIT
#include "framework/afxwin.h"

IMPLEMENT_DYNAMIC(CDialog, CWnd)

BEGIN_MESSAGE_MAP(CDialog, CWnd)
ON_COMMAND(IDOK, OnOK)
ON_COMMAND(IDCANCEL, OnCancel)
END_MESSAGE_MAP()

CDialog::CDialog(UINT templateId, CWnd* parent) : mTemplateId(templateId), mParent(parent) {}

INT_PTR CDialog::DoModal()
{
    const wchar_t* name = MAKEINTRESOURCEW(mTemplateId);
    const INT_PTR result = DialogBoxParamW(AfxFindResourceHandle(name, RT_DIALOG), name,
                                           mParent != nullptr ? mParent->m_hWnd : nullptr,
                                           &CDialog::Procedure, reinterpret_cast<LPARAM>(this));
    Detach();
    return result;
}

void CDialog::EndDialog(int result)
{
    ::EndDialog(m_hWnd, result);
}

BOOL CDialog::OnInitDialog()
{
    UpdateData(FALSE);
    return TRUE;
}

void CDialog::OnOK()
{
    if (UpdateData(TRUE))
        EndDialog(IDOK);
}

void CDialog::OnCancel()
{
    EndDialog(IDCANCEL);
}

INT_PTR CALLBACK CDialog::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
    {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        auto* dialog = reinterpret_cast<CDialog*>(lParam);
        dialog->m_hWnd = window;
        return dialog->OnInitDialog();
    }
    // Null for the messages of the window's making, which come before WM_INITDIALOG.
    auto* dialog = reinterpret_cast<CDialog*>(GetWindowLongPtrW(window, DWLP_USER));
    return dialog != nullptr ? dialog->OnMessage(message, wParam, lParam) : FALSE;
}

// Gives what a dialog procedure gives: nonzero when the message is served, its result left with the window.
INT_PTR CDialog::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    LRESULT result = 0;
    bool served = OnCmdMsg(message, wParam, lParam, result);
    if (!served && message == WM_COMMAND && AfxGetApp() != nullptr)
        served = AfxGetApp()->OnCmdMsg(message, wParam, lParam, result);
    if (!served)
        return FALSE;
    // One of the few whose result is that of the dialog procedure.
    if (message == WM_QUERYDRAGICON)
        return result;
    SetWindowLongPtrW(m_hWnd, DWLP_MSGRESULT, result);
    return TRUE;
}
