// SPDX-License-Identifier: MIT
#include "libraries/ipworks/CallThread.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace
{

constexpr std::chrono::milliseconds kTick{100};

} // namespace

struct CallThread::Shared
{
    std::mutex mutex; // guards the two below
    std::function<void()> call;
    bool ends = false;
    std::condition_variable changed;

    void Serve()
    {
        std::unique_lock lock(mutex);
        for (;;)
        {
            changed.wait(lock, [this] { return call || ends; });
            if (!call)
                return;
            lock.unlock();
            call();
            lock.lock();
            call = nullptr;
            changed.notify_all();
        }
    }
};

CallThread::CallThread()
    : mShared(std::make_shared<Shared>()), mThread([shared = mShared] { shared->Serve(); })
{
}

CallThread::~CallThread()
{
    {
        const std::lock_guard lock(mShared->mutex);
        mShared->ends = true;
    }
    mShared->changed.notify_all();
    if (mLeftBehind)
        mThread.detach();
    else
        mThread.join();
}

bool CallThread::Run(std::function<void()> call, const std::function<bool()>& goesOn)
{
    std::unique_lock lock(mShared->mutex);
    mShared->call = std::move(call);
    mShared->changed.notify_all();
    while (!mShared->changed.wait_for(lock, kTick, [this] { return !mShared->call; }))
    {
        lock.unlock();
        mLeftBehind = !goesOn();
        if (mLeftBehind)
            return false;
        lock.lock();
    }
    return true;
}
