// SPDX-License-Identifier: MIT
// A time limit for calls that know none, such as name look-up.
#pragma once

#include "base/Deadline.h"

#include <future>
#include <optional>
#include <thread>
#include <utility>

// The result of `call`, made on a thread of its own, or nothing when time runs out; the thread then goes on
// by itself, so `call` must own all that it uses. Throws std::system_error when there is no thread to be had.
template <typename Call>
auto RunWithin(Deadline deadline, Call call) -> std::optional<decltype(call())>
{
    std::packaged_task<decltype(call())()> task(std::move(call));
    auto result = task.get_future();
    std::thread(std::move(task)).detach();
    if (result.wait_until(deadline) != std::future_status::ready)
        return std::nullopt;
    return result.get();
}
