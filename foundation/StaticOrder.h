// SPDX-License-Identifier: MIT
// The order in which the program's static objects come to life, across source files: each is defined with
// [[gnu::init_priority(kStatic...)]]. They are destroyed in the reverse order.
#pragma once

constexpr int kStaticContainers = 2001;  // the registered containers, the lock and the string
constexpr int kStaticParser = 2002;      // gCmdLineParser
constexpr int kStaticApplication = 2003; // theApp, whose constructor starts the libraries and logs
constexpr int kStaticStartTick = 2004;   // gStartTick, taken when the application object stands
