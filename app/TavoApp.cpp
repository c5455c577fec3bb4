// SPDX-License-Identifier: MIT
#include "app/TavoApp.h"

#include "app/AdministratorTest.h"
#include "app/CmdLineParser.h"
#include "app/RunModes.h"
#include "app/WatchForEnd.h"
#include "console/TavoDlg.h"
#include "foundation/Kelvane.h"
#include "foundation/Veld.h"
#include "resources/resource.h"

#include <process.h>

namespace
{

// The library's kind of start for an interactive program.
constexpr unsigned long kStartInteractive = 2;

void ShowAdministratorWarning(HINSTANCE module)
{
    const String caption(IDS_ADMINISTRATOR_CAPTION, module);
    const String text(IDS_ADMINISTRATOR_TEXT, module);
    MessageBoxW(nullptr, text.mText, caption.mText, MB_OK);
}

} // namespace

BEGIN_MESSAGE_MAP(CTavoApp, CWinApp)
ON_COMMAND(ID_HELP, CWinApp::OnHelp)
END_MESSAGE_MAP()

CTavoApp::CTavoApp() : CWinApp(nullptr)
{
    CriticalStartupInit(kStartInteractive, eConfigLogDirectory, m_hInstance);
    const ZTString user = GetUserNameW(NameUnknown);
    LogNF(kLogProgress, _StrFormat(L"{0:s} Tavo STARTING.  User = '{1:s}'", {APPNAME, user}), false);
    LogModuleLoaded(m_hInstance, true);
    LogNF(kLogProgress, _StrFormat(L"CmdLine: {0:s}", {GetCommandLineW()}), false);
}

BOOL CTavoApp::InitInstance()
{
    CWinApp::InitInstance();
    const EndWatch watch;
    const ZTString cmdLine = GetCommandLineW();
    gCmdLineParser.Parse(cmdLine);

    if (gCmdLineParser.HasKey(L"FORCE_DEBUG_DUMP") || gCmdLineParser.HasKey(L"FORCE_DEBUG_DUMP_SILENT"))
    {
        SignalShutdown(RunForcedDump());
        return FALSE;
    }
    if (!gCmdLineParser.HasVal(L"FTP_LOG") && !IsUserAdministrator())
    {
        ShowAdministratorWarning(m_hInstance);
        SignalShutdown(L"console not admin");
        return FALSE;
    }

    _beginthread(GUIListenForShutdown, 0, nullptr);
    if (gCmdLineParser.HasKey(L"SETCONFIG"))
    {
        SignalShutdown(RunSetConfig());
        return FALSE;
    }
    CTavoDlg console;
    m_pMainWnd = &console;
    console.DoModal();
    SignalShutdown(L"finished tavo app");
    m_pMainWnd = nullptr;
    return FALSE;
}
