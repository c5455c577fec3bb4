// SPDX-License-Identifier: MIT
#pragma once

// From here on an end from outside goes through EndRun, on a thread of its own: Ctrl-C, a closed terminal, a
// request to end; on Linux these are the signals INT, HUP and TERM, on Windows the end of the session counts,
// too. Before any other thread is started.
void WatchForEnd();
