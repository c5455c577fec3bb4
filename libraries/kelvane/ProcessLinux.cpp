// SPDX-License-Identifier: MIT
#include "libraries/kelvane/Process.h"

#include "libraries/kelvane/Text.h"

#include <pthread.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <ctime>

namespace kelvane
{

unsigned long ProcessId()
{
    return static_cast<unsigned long>(getpid());
}

std::string LocalMoment()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    std::array<char, 64> seconds{};
    std::array<char, 16> offset{};
    std::strftime(seconds.data(), seconds.size(), "%Y-%m-%d %H:%M:%S", &local);
    std::strftime(offset.data(), offset.size(), "%z", &local);
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%s.%03ld %s", seconds.data(), now.tv_nsec / 1'000'000,
                  offset.data());
    return text.data();
}

void NameThread(const wchar_t* name)
{
    // The kernel takes 15 bytes; a character is not cut.
    std::string narrow = Narrow(ViewOf(name)).substr(0, 16);
    if (narrow.size() == 16)
    {
        std::size_t end = 15;
        while (end > 0 && (static_cast<unsigned char>(narrow[end]) & 0xC0) == 0x80)
            --end;
        narrow.resize(end);
    }
    pthread_setname_np(pthread_self(), narrow.c_str());
}

} // namespace kelvane
