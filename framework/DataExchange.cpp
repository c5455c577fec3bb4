// SPDX-License-Identifier: MIT
#include "framework/afxwin.h"

#include <cassert>
#include <limits>
#include <optional>
#include <string_view>

namespace
{

// Ends an exchange that was refused; thrown by Fail, caught by UpdateData, seen by nobody else.
struct ExchangeRefused
{
};

void ReadText(HWND control, CStringW& text)
{
    const int length = GetWindowTextLengthW(control);
    const int read = GetWindowTextW(control, text.GetBuffer(length), length + 1);
    text.ReleaseBuffer(read);
}

std::optional<std::uint32_t> ParseNumber(std::wstring_view text)
{
    constexpr std::wstring_view kBlanks = L" \t";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::wstring_view::npos)
        return std::nullopt;
    text = text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);

    std::uint64_t number = 0;
    for (const wchar_t character : text)
    {
        if (character < L'0' || character > L'9')
            return std::nullopt;
        number = number * 10 + static_cast<std::uint64_t>(character - L'0');
        if (number > std::numeric_limits<std::uint32_t>::max())
            return std::nullopt;
    }
    return static_cast<std::uint32_t>(number);
}

} // namespace

BOOL CWnd::UpdateData(BOOL saveAndValidate)
{
    CDataExchange exchange(this, saveAndValidate);
    try
    {
        DoDataExchange(&exchange);
        return TRUE;
    }
    catch (const ExchangeRefused&)
    {
        return FALSE;
    }
}

HWND CDataExchange::PrepareCtrl(int id) const
{
    const HWND control = GetDlgItem(m_pDlgWnd->m_hWnd, id);
    assert(control);
    return control;
}

void CDataExchange::Fail(HWND edit, const wchar_t* message) const
{
    AfxMessageBox(m_pDlgWnd, message);
    SetFocus(edit);
    SendMessageW(edit, EM_SETSEL, 0, -1);
    throw ExchangeRefused();
}

void DDX_Text(CDataExchange* pDX, int id, CStringW& value)
{
    const HWND control = pDX->PrepareCtrl(id);
    if (pDX->m_bSaveAndValidate)
        ReadText(control, value);
    else
        SetWindowTextW(control, value);
}

void DDX_TextNumber(CDataExchange* pDX, int id, std::uint32_t& value)
{
    const HWND control = pDX->PrepareCtrl(id);
    if (!pDX->m_bSaveAndValidate)
    {
        SetWindowTextW(control, std::to_wstring(value).c_str());
        return;
    }
    CStringW text;
    ReadText(control, text);
    const std::optional<std::uint32_t> number = ParseNumber(text.AsView());
    if (!number)
        pDX->Fail(control, L"Please enter a positive integer.");
    value = *number;
}

void DDX_Check(CDataExchange* pDX, int id, int& value)
{
    const HWND control = pDX->PrepareCtrl(id);
    if (pDX->m_bSaveAndValidate)
        value = static_cast<int>(SendMessageW(control, BM_GETCHECK, 0, 0));
    else
        SendMessageW(control, BM_SETCHECK, value != 0 ? BST_CHECKED : BST_UNCHECKED, 0);
}

void DDX_Control(CDataExchange* pDX, int id, CWnd& control)
{
    if (control.m_hWnd == nullptr)
        pDX->m_pDlgWnd->AttachControl(control, pDX->PrepareCtrl(id));
}
