// SPDX-License-Identifier: MIT
// The terminal's modes while a person is asked, and how it was before: that comes back at every end of the
// process that a handler can see, and while it is stopped.
#pragma once

namespace platform
{

enum class TerminalMode
{
    AsFound,
    Silent, // lines as found, without an echo
    Keys,   // each key as it comes, without an echo; the keys for signals stay
};

// False in the background, where reading a terminal, or setting its modes, would stop the process. One that
// does not control the process (a rescue shell's, that of su -c) stops nobody. Safe in a signal's handler.
bool IsInForeground();

// Only in the foreground: else the system would stop the process. `wakeUp` is an eventfd(2) that is written
// when a stopped process goes on. After a signal that ends the process nothing is changed any more.
void SetTerminalMode(TerminalMode mode, int wakeUp);

// True once after the process was stopped: the mode is then as found.
bool TerminalWasLeft();

} // namespace platform
