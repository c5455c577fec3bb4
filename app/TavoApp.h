// SPDX-License-Identifier: MIT
// The application object. InitInstance runs the whole program inside itself and always gives 0, so the
// framework's own message loop never runs and the process ends with it.
#pragma once

#include "framework/afxwin.h"

class CTavoApp : public CWinApp
{
public:
    // Starts the product's library and writes the first log lines; m_hInstance is still null here.
    CTavoApp();

    BOOL InitInstance() override;

    DECLARE_MESSAGE_MAP()
};
