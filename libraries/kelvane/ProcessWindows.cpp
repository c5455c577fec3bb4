// SPDX-License-Identifier: MIT
#include "libraries/kelvane/Process.h"

#include <windows.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace kelvane
{
namespace
{

// Minutes since 1970, if the time were UTC.
int MinutesOf(const SYSTEMTIME& time)
{
    using namespace std::chrono;
    const sys_days day = year(time.wYear) / time.wMonth / time.wDay;
    return static_cast<int>(minutes(day.time_since_epoch()).count()) + time.wHour * 60 + time.wMinute;
}

} // namespace

unsigned long ProcessId()
{
    return GetCurrentProcessId();
}

std::string LocalMoment()
{
    // By the system's zone: the C runtime reads a variable TZ in a form that other programs do not write.
    SYSTEMTIME utc{};
    SYSTEMTIME local{};
    GetSystemTime(&utc);
    if (!SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local))
        local = utc;
    const int offset = MinutesOf(local) - MinutesOf(utc);
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d.%03d %c%02d%02d", local.wYear,
                  local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond, local.wMilliseconds,
                  offset < 0 ? '-' : '+', std::abs(offset) / 60, std::abs(offset) % 60);
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
