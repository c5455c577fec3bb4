// SPDX-License-Identifier: MIT
// The application framework, as far as the dialogs use it: application object, windows, modal dialogs and
// controls, written on window calls only. Everything here belongs to the UI thread.
#pragma once

#include "framework/afx.h"
#include "framework/afxmsg_.h"
#include "framework/cstringt.h"

#include <windows.h>

#include <map>
#include <memory>
#include <vector>

class CDataExchange;
class CWnd;

// Command of the help key.
constexpr UINT ID_HELP = 0xE146;

// Something that messages can be handed to: a window or the application.
class CCmdTarget : public CObject
{
    DECLARE_DYNAMIC(CCmdTarget)

public:
    // Hands the message to the nearest row of the class's message maps. False when there is none; `result`
    // is then untouched.
    bool OnCmdMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);

protected:
    static const AFX_MSGMAP* GetThisMessageMap();
    virtual const AFX_MSGMAP* GetMessageMap() const;
};

// The one application object. The entry point (framework/Main.cpp) sets m_hInstance and calls InitInstance,
// so the handle is still null in the constructor. The process ends with code 0 when InitInstance returns.
class CWinApp : public CCmdTarget
{
    DECLARE_DYNAMIC(CWinApp)

public:
    // The name is the caption of the framework's own messages; null takes the program's file name. It is not
    // copied.
    explicit CWinApp(const wchar_t* appName = nullptr);
    ~CWinApp() override;

    virtual BOOL InitInstance();

    // The program has no help file: says so.
    afx_msg void OnHelp();

    HINSTANCE m_hInstance = nullptr;
    CWnd* m_pMainWnd = nullptr; // not owned
    const wchar_t* m_pszAppName;

    DECLARE_MESSAGE_MAP()
};

// The application object, null where a program has none.
CWinApp* AfxGetApp();

// The module that holds a resource.
HINSTANCE AfxFindResourceHandle(const wchar_t* name, const wchar_t* type);

// A message of the framework itself, with an OK button.
void AfxMessageBox(CWnd* owner, const wchar_t* text);

// A window, or what will be one. The object does not own the window.
class CWnd : public CCmdTarget
{
    DECLARE_DYNAMIC(CWnd)

public:
    CWnd() = default;

    HWND m_hWnd = nullptr; // null while there is no window

    // Moves the values from the controls into the members (TRUE) or the other way. False when a control's
    // text was refused: the user has been told and the focus is in that control; the members after it in
    // DoDataExchange keep their values.
    BOOL UpdateData(BOOL saveAndValidate = TRUE);

    // The control of an id, null when there is none. The object belongs to this window and is good until
    // the window closes.
    CWnd* GetDlgItem(int id);

    BOOL EnableWindow(BOOL enable = TRUE) { return ::EnableWindow(m_hWnd, enable); }
    void UpdateWindow() { ::UpdateWindow(m_hWnd); }
    BOOL IsIconic() const { return ::IsIconic(m_hWnd); }
    void GetClientRect(RECT* rect) const { ::GetClientRect(m_hWnd, rect); }

    // Ties a control object to a window of this one; the tie ends when this window closes.
    void AttachControl(CWnd& control, HWND window);

protected:
    virtual void DoDataExchange(CDataExchange* pDX);

    // Paints what the system paints.
    afx_msg void OnPaint();

    // Forgets the window and all that hung on it.
    void Detach();

    DECLARE_MESSAGE_MAP()

private:
    std::vector<CWnd*> mAttached;
    std::map<HWND, std::unique_ptr<CWnd>> mTemporary;
};

class CEdit : public CWnd
{
    DECLARE_DYNAMIC(CEdit)
};

class CComboBox : public CWnd
{
    DECLARE_DYNAMIC(CComboBox)

public:
    // Index of the new item, or negative on failure.
    int AddString(const wchar_t* text);
    int SetItemData(int index, DWORD_PTR data);
    DWORD_PTR GetItemData(int index) const;
    // Selects an item; -1 selects none.
    int SetCurSel(int index);
    // Index of the selection, or -1.
    int GetCurSel() const;
};

// A modal dialog, made from a template of the program's resources.
class CDialog : public CWnd
{
    DECLARE_DYNAMIC(CDialog)

public:
    // A null parent leaves the dialog without an owner.
    explicit CDialog(UINT templateId, CWnd* parent = nullptr);

    // Shows the dialog and serves messages until it has been ended; the parent is disabled meanwhile. Gives
    // the result of EndDialog, or -1 when the dialog could not be made.
    virtual INT_PTR DoModal();

    // Hides the dialog and lets DoModal return as soon as the handlers that are running have returned.
    void EndDialog(int result);

    // Fills the controls. Nonzero lets the system place the focus.
    virtual BOOL OnInitDialog();

protected:
    // End the dialog with IDOK, when UpdateData(TRUE) has taken the values, and with IDCANCEL. Enter and Esc
    // come here, whether there are buttons of these ids or not.
    virtual void OnOK();
    virtual void OnCancel();

    DECLARE_MESSAGE_MAP()

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR OnMessage(UINT message, WPARAM wParam, LPARAM lParam);

    UINT mTemplateId;
    CWnd* mParent; // not owned, may be null
};

// The device context of one WM_PAINT, between BeginPaint and EndPaint.
class CPaintDC : public CObject
{
public:
    explicit CPaintDC(CWnd* window);
    ~CPaintDC() override;

    HDC m_hDC;

private:
    HWND mWindow;
    PAINTSTRUCT mPaint;
};

#include "framework/afxdd_.h"
