// SPDX-License-Identifier: MIT
// Message maps: which member of a class serves which message. A class declares its map with
// DECLARE_MESSAGE_MAP and writes its rows between BEGIN_MESSAGE_MAP and END_MESSAGE_MAP; what it has no row
// for goes to the map of its base class. Handlers are given by their bare names. Two rows for the same
// message of the same control do not compile.
#pragma once

#include <windows.h>

#include <cstddef>

class CCmdTarget;

// Marks a member that a message map calls.
#define afx_msg

struct AFX_MSGMAP_ENTRY
{
    UINT message; // 0 ends the map
    UINT code;    // notification code of a WM_COMMAND, else 0
    UINT id;      // control or command of a WM_COMMAND, else 0
    LRESULT (*invoke)(CCmdTarget* target, WPARAM wParam, LPARAM lParam);
};

struct AFX_MSGMAP
{
    const AFX_MSGMAP* (*base)(); // null at the root
    const AFX_MSGMAP_ENTRY* entries;
};

template <std::size_t Count>
constexpr bool AfxRowsDiffer(const AFX_MSGMAP_ENTRY (&rows)[Count])
{
    for (std::size_t i = 0; i < Count; ++i)
    {
        for (std::size_t j = i + 1; j < Count; ++j)
            if (rows[i].message == rows[j].message && rows[i].code == rows[j].code &&
                rows[i].id == rows[j].id)
                return false;
    }
    return true;
}

// Stands in the class; what follows it is protected.
#define DECLARE_MESSAGE_MAP()                                                                                \
protected:                                                                                                   \
    static const AFX_MSGMAP* GetThisMessageMap();                                                            \
    const AFX_MSGMAP* GetMessageMap() const override;

#define BEGIN_MESSAGE_MAP(className, baseName)                                                               \
    const AFX_MSGMAP* className::GetMessageMap() const                                                       \
    {                                                                                                        \
        return GetThisMessageMap();                                                                          \
    }                                                                                                        \
    const AFX_MSGMAP* className::GetThisMessageMap()                                                         \
    {                                                                                                        \
        using ThisClass [[maybe_unused]] = className;                                                        \
        using BaseClass = baseName;                                                                          \
        static constexpr AFX_MSGMAP_ENTRY rows[] = {

#define END_MESSAGE_MAP()                                                                                    \
    AFX_MSGMAP_ENTRY                                                                                         \
    {                                                                                                        \
        0, 0, 0, nullptr                                                                                     \
    }                                                                                                        \
    }                                                                                                        \
    ;                                                                                                        \
    static_assert(AfxRowsDiffer(rows), "two rows serve the same message");                                   \
    static const AFX_MSGMAP map = {&BaseClass::GetThisMessageMap, rows};                                     \
    return &map;                                                                                             \
    }

#define AFX_ROW(message, code, id, result)                                                                   \
    {message, code, id,                                                                                      \
     []([[maybe_unused]] CCmdTarget* target, [[maybe_unused]] WPARAM wParam,                                 \
        [[maybe_unused]] LPARAM lParam) -> LRESULT { return result; }},

#define AFX_CALL(handler) static_cast<ThisClass*>(target)->handler

// void OnPaint()
#define ON_WM_PAINT() AFX_ROW(WM_PAINT, 0, 0, (AFX_CALL(OnPaint)(), 0))
// HCURSOR OnQueryDragIcon()
#define ON_WM_QUERYDRAGICON()                                                                                \
    AFX_ROW(WM_QUERYDRAGICON, 0, 0, reinterpret_cast<LRESULT>(AFX_CALL(OnQueryDragIcon)()))
// void handler(): a command, from a menu or a button
#define ON_COMMAND(id, handler) AFX_ROW(WM_COMMAND, 0, static_cast<UINT>(id), (AFX_CALL(handler)(), 0))
// void handler(): a click on a button
#define ON_BN_CLICKED(id, handler)                                                                           \
    AFX_ROW(WM_COMMAND, BN_CLICKED, static_cast<UINT>(id), (AFX_CALL(handler)(), 0))
// LRESULT handler(WPARAM, LPARAM)
#define ON_MESSAGE(message, handler) AFX_ROW(message, 0, 0, AFX_CALL(handler)(wParam, lParam))
