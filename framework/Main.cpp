// SPDX-License-Identifier: MIT
// The entry point of a program on the framework. Both systems start a program with or without a console
// here; the command line comes from GetCommandLineW.
#include "framework/afxwin.h"

int main()
{
    CWinApp* app = AfxGetApp();
    app->m_hInstance = GetModuleHandleW(nullptr);
    app->InitInstance();
    return 0;
}
