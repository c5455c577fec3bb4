// SPDX-License-Identifier: MIT
#pragma once

// While it lives, an end from outside goes through EndRun. On Linux: the signals INT, HUP, QUIT and TERM, on
// a thread of its own, and exit(3) by a library or quick_exit(3) by the window's part, when its display is
// gone. On Windows, where the program has no console: the end of the session. Made once, before any other
// thread.
class EndWatch
{
public:
    EndWatch();
    ~EndWatch();
    EndWatch(const EndWatch&) = delete;
    EndWatch& operator=(const EndWatch&) = delete;
};
