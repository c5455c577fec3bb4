// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"
#include "libraries/kelvane/Log.h"
#include "libraries/kelvane/Process.h"
#include "libraries/kelvane/Text.h"

#include <condition_variable>
#include <mutex>

unsigned long gRunningApp = 0;

namespace
{

// Never destroyed: the listener may still be inside when the process ends.
struct Shutdown
{
    std::mutex guard;
    std::condition_variable changed;
    bool signalled = false;
};
Shutdown& TheShutdown()
{
    static auto& shutdown = *new Shutdown;
    return shutdown;
}

void LogLockWaits()
{
    const ZTString book = GetLockWaits();
    std::wstring_view rest = book.AsView();
    while (!rest.empty())
    {
        const std::size_t end = rest.find(L'\n');
        std::wstring line(L"Lock wait: ");
        line += rest.substr(0, end);
        while (line.back() == L'\r')
            line.pop_back();
        LogNF(kLogProgress, line.c_str(), false);
        rest.remove_prefix(end == std::wstring_view::npos ? rest.size() : end + 1);
    }
}

} // namespace

void CriticalStartupInit(unsigned long kind, eConfigID logSetting, HINSTANCE)
{
    gRunningApp = kind;
    kelvane::SetThreadNameInLog(L"Main");
    kelvane::SetLogDirectorySetting(logSetting);
    GetLogDirectory(); // from here on it stays
    gbRecordLockWaits = GetConfigDWord(eConfigRecordLockWaits, nullptr) != 0;
}

void ThreadInit(const wchar_t* name)
{
    kelvane::SetThreadNameInLog(name);
    kelvane::NameThread(name);
}

void __cdecl GUIListenForShutdown(void*)
{
    ThreadInit(L"GUIListenForShutdown");
    Shutdown& shutdown = TheShutdown();
    std::unique_lock lock(shutdown.guard);
    shutdown.changed.wait(lock, [&shutdown] { return shutdown.signalled; });
}

void SignalShutdown(const wchar_t* reason)
{
    if (gbRecordLockWaits)
        LogLockWaits();
    _Log(kLogProgress, L"Shutdown of application {0:u}: {1:s}", {gRunningApp, reason});
    Shutdown& shutdown = TheShutdown();
    const std::lock_guard lock(shutdown.guard);
    shutdown.signalled = true;
    shutdown.changed.notify_all();
}
