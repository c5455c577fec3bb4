// SPDX-License-Identifier: MIT
// The display of a machine without one. What the program writes into a read-only box of several lines goes to
// standard output as it comes. Lines of standard input drive the dialog on top:
//
//     Close            presses a button: its caption in any case, an unambiguous beginning of it, or its id
//     Port=389         fills a box, named by its label or its id
//     1013=on          ticks a check box, or not (off), named by its caption or its id
//     1003=NTLM        selects an item by its text or its index
//
// Anything else is answered with one line that says what can be pressed. End of input cancels the dialog. A
// prompt is shown only where both streams are a terminal. Output that nobody takes any more is dropped.
#pragma once

#include "platform/dialogs/Display.h"

namespace platform
{

std::unique_ptr<Display> MakeTerminalDisplay();

} // namespace platform
