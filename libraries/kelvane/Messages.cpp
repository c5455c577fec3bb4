// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"
#include "libraries/kelvane/WindowCalls.h"

#include <algorithm>

namespace
{

// A handler that shows a line pumps in turn, so a thousand posted lines would stack a thousand handlers.
// Beyond this depth a pump leaves the waiting messages to the pumps that it runs inside of, in the same
// order.
constexpr int kMostNestedPumps = 16;
thread_local int tNestedPumps = 0;

class NestedPump
{
public:
    NestedPump() { ++tNestedPumps; }
    ~NestedPump() { --tNestedPumps; }
    NestedPump(const NestedPump&) = delete;
    NestedPump& operator=(const NestedPump&) = delete;
};

// Dispatches a message that was taken from the queue. False when the thread is to end its loops.
bool ServeMessage(MSG& message)
{
    if (message.message == WM_QUIT)
    {
        // It ends the loop that the pump runs inside of.
        PostQuitMessage(static_cast<int>(message.wParam));
        return false;
    }
    // The keyboard works in a dialog whose own loop is held up.
    const HWND dialog = message.hwnd != nullptr ? GetAncestor(message.hwnd, GA_ROOT) : nullptr;
    if (dialog != nullptr && IsDialogMessageW(dialog, &message))
        return true;
    TranslateMessage(&message);
    DispatchMessageW(&message);
    return true;
}

} // namespace

void PumpMessages(HWND, DWORD)
{
    if (tNestedPumps == kMostNestedPumps)
        return;
    const NestedPump nested;
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) && ServeMessage(message))
    {
    }
}

int TimedMessageBox(const wchar_t* title, const wchar_t* text, UINT type, DWORD seconds, int timeoutResult)
{
    constexpr DWORD kMsPerSecond = 1000;
    const DWORD milliseconds = std::min<DWORD>(seconds, INFINITE / kMsPerSecond - 1) * kMsPerSecond;
    const int answer = kelvane::ShowTimedBox(title, text, type, milliseconds);
    return answer == kelvane::kTimedOut ? timeoutResult : answer;
}
