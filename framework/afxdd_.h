// SPDX-License-Identifier: MIT
// Data exchange between the controls of a dialog and the members of its class, called from DoDataExchange.
// A DDX_ routine reads the control when m_bSaveAndValidate is set and writes it otherwise. Every id must be
// that of a control of the dialog.
#pragma once

#include "framework/cstringt.h"

#include <windows.h>

#include <concepts>
#include <cstdint>

class CWnd;

class CDataExchange
{
public:
    CDataExchange(CWnd* dialog, BOOL saveAndValidate) : m_bSaveAndValidate(saveAndValidate), m_pDlgWnd(dialog)
    {
    }

    BOOL m_bSaveAndValidate;
    CWnd* m_pDlgWnd;

    // The control of an id.
    HWND PrepareCtrl(int id) const;

    // Refuses the text of an edit control: shows the message, puts the focus there with the text selected
    // and ends the exchange.
    [[noreturn]] void Fail(HWND edit, const wchar_t* message) const;
};

// A text of any length.
void DDX_Text(CDataExchange* pDX, int id, CStringW& value);

// An unsigned 32-bit number in decimal, blanks around it allowed. Anything else is refused.
void DDX_TextNumber(CDataExchange* pDX, int id, std::uint32_t& value);

// 32 bits are an unsigned int on one system and an unsigned long on the other.
template <std::unsigned_integral Number>
requires(sizeof(Number) == sizeof(std::uint32_t)) void DDX_Text(CDataExchange* pDX, int id, Number& value)
{
    std::uint32_t number = value;
    DDX_TextNumber(pDX, id, number);
    value = number;
}

// A check box: 1 ticked, 0 not; any other value than 0 ticks it.
void DDX_Check(CDataExchange* pDX, int id, int& value);

// Ties a control object to its control, for as long as the dialog is open.
void DDX_Control(CDataExchange* pDX, int id, CWnd& control);
