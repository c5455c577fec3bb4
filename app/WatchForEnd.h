// SPDX-License-Identifier: MIT
#pragma once

// From here on an end from outside goes through EndRun, on a thread of its own: on Linux the signals INT, HUP
// and TERM; on Windows, where the program has no console, the end of the session. Before any other thread is
// started.
void WatchForEnd();
