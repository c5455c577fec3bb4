// SPDX-License-Identifier: MIT
// The messages of the windows' thread. Others post to it; that thread alone takes messages out and waits.
#pragma once

#include "base/Deadline.h"

#include <windows.h>

#include <deque>
#include <mutex>

namespace platform
{

class Display;

class MessageQueue
{
public:
    // Any thread. What still waits when its window goes reaches nobody.
    void Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    // The windows' thread only, like all below. What a person did. It comes after all posted messages,
    // whenever those were posted.
    void AddInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    // Whether some of that waits to be taken. No more is to be done then: it may be meant for what comes of
    // it.
    bool HoldsInput() const { return !mInput.empty(); }

    // Takes the next message, or only looks at it; false when there is none now. Without `input`, what a
    // person did stays, the end of the input too.
    bool Next(MSG& message, bool remove, bool input = true);

    // Returns once something may have come, not necessarily a message, or at the deadline.
    void Wait(Deadline deadline);

    // Waits happen in the display, which hears of input as well. Comes before all other calls.
    void WaitIn(Display& display) { mDisplay = &display; }

private:
    bool NextPosted(MSG& message, bool remove);
    bool NextInput(MSG& message, bool remove);

    std::mutex mMutex;
    std::deque<MSG> mPosted; // with mMutex
    bool mWaiting = false;   // with mMutex
    Display* mDisplay = nullptr;
    std::deque<MSG> mInput;
};

} // namespace platform
