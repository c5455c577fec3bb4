// SPDX-License-Identifier: MIT
#include "platform/display/none/NoDisplay.h"

#include <condition_variable>
#include <mutex>

namespace platform
{

namespace
{

class NoDisplay : public Display
{
public:
    void Show(Window&) override {}
    void Hide(Window&) override {}
    void Forget(Window&) override {}
    void Refresh(Window&, Change, std::size_t) override {}
    void Focus(Window&) override {}
    void ScrollLines(Window&, long) override {}
    void Update(Window&) override {}

    void Wait(std::chrono::milliseconds time) override
    {
        std::unique_lock lock(mMutex);
        const auto isWoken = [this] { return mWoken; };
        if (time == kForever)
            mWake.wait(lock, isWoken);
        else
            mWake.wait_for(lock, time, isWoken);
        mWoken = false;
    }

    void Wake() override
    {
        const std::lock_guard lock(mMutex);
        mWoken = true;
        mWake.notify_one();
    }

private:
    std::mutex mMutex;
    std::condition_variable mWake;
    bool mWoken = false;
};

} // namespace

std::unique_ptr<Display> MakeNoDisplay()
{
    return std::make_unique<NoDisplay>();
}

} // namespace platform
