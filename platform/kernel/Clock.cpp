// SPDX-License-Identifier: MIT
#include "winbase.h"

#include <time.h>

#include <cerrno>

namespace
{

// The last second of the year 3000 in UTC and a day more, for every zone: the range of Windows' runtime.
constexpr __time64_t kLastTime = 32535215999 + 86400;

template <struct tm* (*Split)(const time_t*, struct tm*)>
struct tm* SplitTime(const __time64_t* time)
{
    static thread_local struct tm fields;
    if (time == nullptr || *time < 0 || *time > kLastTime)
    {
        errno = EINVAL;
        return nullptr;
    }
    return Split(time, &fields);
}

} // namespace

DWORD GetTickCount()
{
    constexpr DWORD kMillisecond = 1000000; // in ns
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now); // goes on while the machine sleeps, as Windows' does
    return static_cast<DWORD>(now.tv_sec) * 1000 + static_cast<DWORD>(now.tv_nsec) / kMillisecond;
}

__time64_t _time64(__time64_t* result)
{
    return time(result);
}

struct tm* _localtime64(const __time64_t* time)
{
    return SplitTime<localtime_r>(time);
}

struct tm* _gmtime64(const __time64_t* time)
{
    return SplitTime<gmtime_r>(time);
}

void _tzset()
{
    tzset();
}
