// SPDX-License-Identifier: MIT
// What is shown when the C library's call for a date fails: this program has its own.
#include "foundation/DateValue.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

static bool gbThrows = false;
static bool gbWritesNothing = false;

extern "C" std::size_t FormatTime(wchar_t* buffer, std::size_t room, const wchar_t* format,
                                  const tm* time) __asm__("wcsftime");

std::size_t FormatTime(wchar_t* buffer, std::size_t room, const wchar_t* format, const tm* time)
{
    if (gbThrows)
        throw 1;
    if (gbWritesNothing)
        return 0;
    return reinterpret_cast<decltype(&FormatTime)>(dlsym(RTLD_NEXT, "wcsftime"))(buffer, room, format, time);
}

TEST(DateFormat, SaysThatTheCalendarFailed)
{
    gbThrows = true;
    EXPECT_EQ(FormatLocalDate({100.5, eDateValid}), L"{ invalid date ex - 100.500000 }");
    gbThrows = false;
    gbWritesNothing = true;
    EXPECT_EQ(FormatLocalDate({100.5, eDateValid}), L"");
    gbWritesNothing = false;
}
