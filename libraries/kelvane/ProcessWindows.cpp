// SPDX-License-Identifier: MIT
#include "libraries/kelvane/Process.h"

#include <windows.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace kelvane
{

unsigned long ProcessId()
{
    return GetCurrentProcessId();
}

std::string LocalMoment()
{
    using namespace std::chrono;
    const auto now = floor<milliseconds>(system_clock::now());
    const std::time_t time = system_clock::to_time_t(floor<seconds>(now));
    tm local{};
    localtime_s(&local, &time);
    std::array<char, 64> seconds{};
    std::strftime(seconds.data(), seconds.size(), "%Y-%m-%d %H:%M:%S", &local);
    // The runtime's own "%z" is a name. Read as if it were UTC, the wall clock is off by the offset.
    const auto offset = static_cast<long>((_mkgmtime(&local) - time) / 60);
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%s.%03d %c%02ld%02ld", seconds.data(),
                  static_cast<int>(now.time_since_epoch().count() % 1000), offset < 0 ? '-' : '+',
                  std::labs(offset) / 60, std::labs(offset) % 60);
    return text.data();
}

void NameThread(const wchar_t* name)
{
    // The first systems that have it export it here alone.
    using Describe = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    if (const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernelbase.dll"), "SetThreadDescription"))
        reinterpret_cast<Describe>(reinterpret_cast<void*>(found))(GetCurrentThread(), name);
}

} // namespace kelvane
