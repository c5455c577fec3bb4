// SPDX-License-Identifier: MIT
#include "framework/afxwin.h"

#include <cassert>

IMPLEMENT_DYNAMIC(CWnd, CCmdTarget)
IMPLEMENT_DYNAMIC(CEdit, CWnd)
IMPLEMENT_DYNAMIC(CComboBox, CWnd)

BEGIN_MESSAGE_MAP(CWnd, CCmdTarget)
END_MESSAGE_MAP()

CWnd* CWnd::GetDlgItem(int id)
{
    const HWND window = ::GetDlgItem(m_hWnd, id);
    if (window == nullptr)
        return nullptr;
    std::unique_ptr<CWnd>& control = mTemporary[window];
    if (!control)
    {
        control = std::make_unique<CWnd>();
        control->m_hWnd = window;
    }
    return control.get();
}

void CWnd::AttachControl(CWnd& control, HWND window)
{
    assert(!control.m_hWnd);
    control.m_hWnd = window;
    mAttached.push_back(&control);
}

void CWnd::Detach()
{
    m_hWnd = nullptr;
    for (CWnd* control : mAttached)
        control->m_hWnd = nullptr;
    mAttached.clear();
    mTemporary.clear();
}

void CWnd::DoDataExchange(CDataExchange*) {}

void CWnd::OnPaint()
{
    const CPaintDC dc(this);
}

CPaintDC::CPaintDC(CWnd* window) : mWindow(window->m_hWnd)
{
    m_hDC = BeginPaint(mWindow, &mPaint);
}

CPaintDC::~CPaintDC()
{
    EndPaint(mWindow, &mPaint);
}

int CComboBox::AddString(const wchar_t* text)
{
    return static_cast<int>(SendMessageW(m_hWnd, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text)));
}

int CComboBox::SetItemData(int index, DWORD_PTR data)
{
    return static_cast<int>(
        SendMessageW(m_hWnd, CB_SETITEMDATA, static_cast<WPARAM>(index), static_cast<LPARAM>(data)));
}

DWORD_PTR CComboBox::GetItemData(int index) const
{
    return static_cast<DWORD_PTR>(SendMessageW(m_hWnd, CB_GETITEMDATA, static_cast<WPARAM>(index), 0));
}

int CComboBox::SetCurSel(int index)
{
    return static_cast<int>(SendMessageW(m_hWnd, CB_SETCURSEL, static_cast<WPARAM>(index), 0));
}

int CComboBox::GetCurSel() const
{
    return static_cast<int>(SendMessageW(m_hWnd, CB_GETCURSEL, 0, 0));
}
