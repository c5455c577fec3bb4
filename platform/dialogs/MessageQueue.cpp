// SPDX-License-Identifier: MIT
#include "platform/dialogs/MessageQueue.h"

#include "platform/dialogs/Display.h"
#include "platform/dialogs/EndOfInput.h"
#include "platform/dialogs/UserInput.h"
#include "platform/dialogs/WindowTable.h"

namespace platform
{

namespace
{

MSG MakeMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch());
    return {window, message, wParam, lParam, static_cast<DWORD>(now.count()), {0, 0}};
}

} // namespace

void MessageQueue::Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const std::lock_guard lock(mMutex);
    mPosted.push_back(MakeMessage(window, message, wParam, lParam));
    if (mWaiting)
        mDisplay->Wake();
    mWaiting = false;
}

void MessageQueue::AddInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    mInput.push_back(MakeMessage(window, message, wParam, lParam));
}

bool MessageQueue::NextPosted(MSG& message, bool remove)
{
    const std::lock_guard lock(mMutex);
    if (mPosted.empty())
        return false;
    message = mPosted.front();
    if (remove)
        mPosted.pop_front();
    return true;
}

bool MessageQueue::NextInput(MSG& message, bool remove)
{
    while (!mInput.empty())
    {
        message = mInput.front();
        const bool canTakeIt = CanTakeInput(message);
        if (remove || !canTakeIt)
            mInput.pop_front();
        if (canTakeIt)
            return true;
    }
    return false;
}

bool MessageQueue::Next(MSG& message, bool remove, bool input)
{
    if (NextPosted(message, remove) || (input && NextInput(message, remove)))
        return true;
    mDisplay->Wait(std::chrono::milliseconds(0));
    if (NextPosted(message, remove) || (input && NextInput(message, remove)))
        return true;
    if (const HWND unpainted = FindUnpainted())
    {
        message = MakeMessage(unpainted, WM_PAINT, 0, 0);
        return true;
    }
    return input && mDisplay->InputHasEnded() && CancelTopDialog() && NextPosted(message, remove);
}

void MessageQueue::Wait(Deadline deadline)
{
    {
        const std::lock_guard lock(mMutex);
        if (!mPosted.empty())
            return;
        mWaiting = true;
    }
    mDisplay->Wait(deadline == kNever ? Display::kForever
                                      : std::chrono::milliseconds(MillisecondsUntil(deadline)));
    const std::lock_guard lock(mMutex);
    mWaiting = false;
}

} // namespace platform
