// SPDX-License-Identifier: MIT
// A time limit for calls that know none, such as name look-up.
#pragma once

#include <chrono>
#include <future>
#include <optional>
#include <thread>
#include <utility>

namespace platform
{

// The result of `call`, made on a thread of its own, or nothing when time runs out; the thread then goes on
// by itself, so `call` must own all that it uses. Throws std::system_error when there is no thread to be had.
template <typename Call>
auto RunWithin(std::chrono::steady_clock::time_point deadline, Call call) -> std::optional<decltype(call())>
{
    std::packaged_task<decltype(call())()> task(std::move(call));
    auto result = task.get_future();
    std::thread(std::move(task)).detach();
    if (result.wait_until(deadline) != std::future_status::ready)
        return std::nullopt;
    return result.get();
}

} // namespace platform
