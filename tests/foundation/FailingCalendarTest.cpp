// SPDX-License-Identifier: MIT
// What is shown when the C library's call for a date fails: this program has its own.
#include "foundation/DateValue.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

static std::size_t (*gFailure)() = nullptr; // what is done in its place

extern "C" std::size_t FormatTime(wchar_t* buffer, std::size_t room, const wchar_t* format,
                                  const tm* time) __asm__("wcsftime");

std::size_t FormatTime(wchar_t* buffer, std::size_t room, const wchar_t* format, const tm* time)
{
    if (gFailure != nullptr)
        return gFailure();
    return reinterpret_cast<decltype(&FormatTime)>(dlsym(RTLD_NEXT, "wcsftime"))(buffer, room, format, time);
}

TEST(DateFormat, SaysThatTheCalendarFailed)
{
    gFailure = []() -> std::size_t { throw 1; };
    EXPECT_EQ(FormatLocalDate({100.5, eDateValid}), L"{ invalid date ex - 100.500000 }");
    gFailure = []() -> std::size_t { return 0; };
    EXPECT_EQ(FormatLocalDate({100.5, eDateValid}), L"");
    gFailure = nullptr;
}
