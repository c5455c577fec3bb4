// SPDX-License-Identifier: MIT
// A thread for calls that may never come back, so that whoever makes them is not held up for ever.
#pragma once

#include <functional>
#include <memory>
#include <thread>

class CallThread
{
public:
    CallThread();
    // Waits for the thread's end, or leaves it behind when it still has not come back.
    ~CallThread();
    CallThread(const CallThread&) = delete;
    CallThread& operator=(const CallThread&) = delete;

    // Runs `call` on the thread, and `goesOn` here every 100 ms until it has come back. False when `goesOn`
    // said no before: the call goes on alone, so it must own all that it touches, and it is the last one.
    bool Run(std::function<void()> call, const std::function<bool()>& goesOn);

private:
    struct Shared;

    std::shared_ptr<Shared> mShared;
    bool mLeftBehind = false;
    std::thread mThread;
};
