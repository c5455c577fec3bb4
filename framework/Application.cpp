// SPDX-License-Identifier: MIT
#include "framework/afxwin.h"

#include <cassert>
#include <string>

namespace
{

CWinApp* gApp = nullptr;

// The program's file name without folder and extension.
std::wstring ProgramName()
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH - 1);
    std::wstring name = path;
    name.erase(0, name.find_last_of(L"\\/") + 1);
    return name.substr(0, name.rfind(L'.'));
}

} // namespace

IMPLEMENT_DYNAMIC(CWinApp, CCmdTarget)

BEGIN_MESSAGE_MAP(CWinApp, CCmdTarget)
END_MESSAGE_MAP()

CWinApp::CWinApp(const wchar_t* appName) : m_pszAppName(appName)
{
    assert(!gApp);
    gApp = this;
}

CWinApp::~CWinApp()
{
    gApp = nullptr;
}

BOOL CWinApp::InitInstance()
{
    return TRUE;
}

void CWinApp::OnHelp()
{
    AfxMessageBox(m_pMainWnd, L"Failed to launch help.");
}

CWinApp* AfxGetApp()
{
    return gApp;
}

HINSTANCE AfxFindResourceHandle(const wchar_t*, const wchar_t*)
{
    return GetModuleHandleW(nullptr);
}

void AfxMessageBox(CWnd* owner, const wchar_t* text)
{
    const std::wstring caption =
        gApp != nullptr && gApp->m_pszAppName != nullptr ? gApp->m_pszAppName : ProgramName();
    MessageBoxW(owner != nullptr ? owner->m_hWnd : nullptr, text, caption.c_str(),
                MB_OK | MB_ICONEXCLAMATION);
}
