// SPDX-License-Identifier: MIT
// The moment at which a wait has to end. It is set once and handed down, so that every loop on the way looks
// at the same one.
#pragma once

#include <algorithm>
#include <chrono>

using Clock = std::chrono::steady_clock;
using Deadline = Clock::time_point;

constexpr Deadline kNever = Deadline::max();

// What is left of the time, for poll(2): whole milliseconds, rounded up, 0 when it is over. Never more than
// an hour, after which the caller asks again.
inline int MillisecondsUntil(Deadline deadline)
{
    using std::chrono::milliseconds;
    constexpr milliseconds kLongest{3'600'000};
    const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::clamp(left, milliseconds(0), kLongest).count());
}

// The end of the next turn where `turns` of them share the time that is left, evenly.
inline Deadline EndOfTurn(Deadline deadline, long turns)
{
    const Deadline now = Clock::now();
    return now + (deadline - now) / turns;
}
