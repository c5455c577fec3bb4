// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"
#include "libraries/kelvane/WindowCalls.h"

#include <algorithm>

namespace
{

// A handler that shows a line pumps in turn, so a thousand posted lines would stack a thousand handlers. At
// this depth a pump serves what was posted and paints, and leaves what a person does to the pumps that it
// runs inside of; a pump inside that one leaves all of it, in the same order.
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

// Dispatches a message that was taken from the queue.
void ServeMessage(MSG& message)
{
    // The keyboard works in a dialog whose own loop is held up.
    const HWND dialog = message.hwnd != nullptr ? GetAncestor(message.hwnd, GA_ROOT) : nullptr;
    if (dialog != nullptr && IsDialogMessageW(dialog, &message))
        return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

} // namespace

void PumpMessages(HWND, DWORD)
{
    if (tNestedPumps > kMostNestedPumps)
        return;
    const UINT what =
        tNestedPumps < kMostNestedPumps ? PM_REMOVE : PM_REMOVE | PM_QS_POSTMESSAGE | PM_QS_PAINT;
    const NestedPump nested;
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, what))
        ServeMessage(message);
}

int TimedMessageBox(const wchar_t* title, const wchar_t* text, UINT type, DWORD seconds, int timeoutResult)
{
    constexpr DWORD kMsPerSecond = 1000;
    const DWORD milliseconds = std::min<DWORD>(seconds, INFINITE / kMsPerSecond - 1) * kMsPerSecond;
    const int answer = kelvane::ShowTimedBox(title, text, type, milliseconds);
    return answer == kelvane::kTimedOut ? timeoutResult : answer;
}
