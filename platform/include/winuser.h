// SPDX-License-Identifier: MIT
// Windows, dialogs, messages and the resources they are made from. The windows of a process live on one
// thread, the one that makes the first of them; only PostMessageW does anything on others. Resources are
// those embedded in the program (see platform/resource/), whatever module is named; their names are numbers.
#pragma once

#include "windef.h"

// Styles that templates use.
#define WS_POPUP 0x80000000
#define WS_VISIBLE 0x10000000
#define WS_DISABLED 0x08000000
#define WS_CAPTION 0x00C00000
#define WS_VSCROLL 0x00200000
#define WS_HSCROLL 0x00100000
#define WS_SYSMENU 0x00080000
#define WS_TABSTOP 0x00010000
#define WS_MINIMIZEBOX 0x00020000

#define WS_EX_APPWINDOW 0x00040000

#define DS_SETFONT 0x0040
#define DS_MODALFRAME 0x0080
#define DS_CENTER 0x0800

#define ES_MULTILINE 0x0004
#define ES_AUTOHSCROLL 0x0080
#define ES_READONLY 0x0800

#define BS_PUSHBUTTON 0x0000
#define BS_DEFPUSHBUTTON 0x0001
#define BS_AUTOCHECKBOX 0x0003
#define BS_MULTILINE 0x2000

#define SS_LEFT 0x0000

#define CBS_DROPDOWNLIST 0x0003

// Control ids of the system's own buttons.
#define IDOK 1
#define IDCANCEL 2
#define IDYES 6
#define IDNO 7

// Resource types, as numbers for the resource compiler.
#ifdef RC_INVOKED
#define RT_ICON 3
#define RT_DIALOG 5
#define RT_STRING 6
#define RT_GROUP_ICON 14
#define RT_MANIFEST 24
#define IDC_STATIC (-1)
#else

#include "platformExport.h"

#define RT_ICON MAKEINTRESOURCEW(3)
#define RT_DIALOG MAKEINTRESOURCEW(5)
#define RT_STRING MAKEINTRESOURCEW(6)
#define RT_GROUP_ICON MAKEINTRESOURCEW(14)

// Messages.
#define WM_SETTEXT 0x000C
#define WM_GETTEXT 0x000D
#define WM_GETTEXTLENGTH 0x000E
#define WM_PAINT 0x000F
#define WM_CLOSE 0x0010
#define WM_ICONERASEBKGND 0x0027
#define WM_QUERYDRAGICON 0x0037
#define WM_SETICON 0x0080
#define WM_KEYDOWN 0x0100
#define WM_INITDIALOG 0x0110
#define WM_COMMAND 0x0111
#define WM_USER 0x0400

#define EM_SETSEL 0x00B1
#define EM_LINESCROLL 0x00B6
#define EM_GETLINECOUNT 0x00BA
#define EM_LIMITTEXT 0x00C5

#define BM_GETCHECK 0x00F0
#define BM_SETCHECK 0x00F1
#define BM_CLICK 0x00F5
#define BN_CLICKED 0
#define BST_UNCHECKED 0
#define BST_CHECKED 1

#define CB_ADDSTRING 0x0143
#define CB_GETCURSEL 0x0147
#define CB_SETCURSEL 0x014E
#define CB_GETITEMDATA 0x0150
#define CB_SETITEMDATA 0x0151
#define CB_ERR (-1)

#define ICON_SMALL 0
#define ICON_BIG 1

#define VK_RETURN 0x0D
#define VK_ESCAPE 0x1B

#define SW_HIDE 0

#define PM_REMOVE 1
#define PM_QS_POSTMESSAGE 0x00980000
#define PM_QS_PAINT 0x00200000

#define GA_ROOT 2
#define DWLP_MSGRESULT 0
#define DWLP_USER 16

#define SM_CXICON 11
#define SM_CYICON 12

#define MB_OK 0x00000000
#define MB_YESNO 0x00000004
#define MB_ICONEXCLAMATION 0x00000030
#define MB_ICONMASK 0x000000F0
#define MB_TYPEMASK 0x0000000F
#define MB_TIMEDOUT 32000

using DLGPROC = INT_PTR (*)(HWND, UINT, WPARAM, LPARAM);

struct MSG
{
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};
using LPMSG = MSG*;

struct PAINTSTRUCT
{
    HDC hdc;
    BOOL fErase;
    RECT rcPaint;
    BOOL fRestore;
    BOOL fIncUpdate;
    BYTE rgbReserved[32];
};
using LPPAINTSTRUCT = PAINTSTRUCT*;

extern "C"
{
    // Dialogs.
    PLATFORM_EXPORT INT_PTR DialogBoxParamW(HINSTANCE module, LPCWSTR dialog, HWND owner, DLGPROC procedure,
                                            LPARAM parameter);
    PLATFORM_EXPORT BOOL EndDialog(HWND dialog, INT_PTR result);
    PLATFORM_EXPORT HWND GetDlgItem(HWND dialog, int id);
    PLATFORM_EXPORT LONG_PTR GetWindowLongPtrW(HWND window, int index);
    PLATFORM_EXPORT LONG_PTR SetWindowLongPtrW(HWND dialog, int index, LONG_PTR value); // DWLP_... only
    // Takes Enter and Esc; the other keys that move within a dialog are the display's.
    PLATFORM_EXPORT BOOL IsDialogMessageW(HWND dialog, LPMSG message);

    // Message boxes: MB_YESNO, or an OK button alone. MessageBoxTimeoutW answers MB_TIMEDOUT when nobody did
    // within the time; the language is ignored. Without an owner, dialogs that are open stay enabled.
    PLATFORM_EXPORT int MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type);
    PLATFORM_EXPORT int MessageBoxTimeoutW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type,
                                           WORD language, DWORD milliseconds);

    // Messages. Posted ones come first, in the order of posting, then what the person did, then WM_PAINT. Any
    // thread may post. PeekMessageW takes no filter: window, first and last are 0; but with both PM_QS_
    // values what a person does stays for a later call. It gives FALSE on any other thread than the windows'.
    PLATFORM_EXPORT LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    PLATFORM_EXPORT BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    PLATFORM_EXPORT BOOL PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT remove);
    PLATFORM_EXPORT BOOL TranslateMessage(const MSG* message);
    PLATFORM_EXPORT LRESULT DispatchMessageW(const MSG* message);

    // Windows.
    PLATFORM_EXPORT HWND GetAncestor(HWND window, UINT kind); // GA_ROOT: the dialog that it lies in, or is
    PLATFORM_EXPORT BOOL SetWindowTextW(HWND window, LPCWSTR text);
    PLATFORM_EXPORT int GetWindowTextW(HWND window, LPWSTR text, int capacity);
    PLATFORM_EXPORT int GetWindowTextLengthW(HWND window);
    PLATFORM_EXPORT BOOL EnableWindow(HWND window, BOOL enable);
    PLATFORM_EXPORT HWND SetFocus(HWND control);
    PLATFORM_EXPORT BOOL IsIconic(HWND window);

    // Painting of dialogs. Only icons are drawn. A client rectangle is in the display's pixels, two a dialog
    // unit where there are none.
    PLATFORM_EXPORT BOOL UpdateWindow(HWND window);
    PLATFORM_EXPORT HDC BeginPaint(HWND dialog, LPPAINTSTRUCT paint);
    PLATFORM_EXPORT BOOL EndPaint(HWND dialog, const PAINTSTRUCT* paint);
    PLATFORM_EXPORT BOOL GetClientRect(HWND dialog, LPRECT rectangle);
    PLATFORM_EXPORT BOOL DrawIcon(HDC context, int x, int y, HICON icon);
    PLATFORM_EXPORT int GetSystemMetrics(int index); // SM_CXICON, SM_CYICON

    // Resources.
    PLATFORM_EXPORT HICON LoadIconW(HINSTANCE module, LPCWSTR name);
    // A capacity of 0 gives 0: there is no text to point into.
    PLATFORM_EXPORT int LoadStringW(HINSTANCE module, UINT id, LPWSTR text, int capacity);
}

#endif // RC_INVOKED
