// SPDX-License-Identifier: MIT
// The end of a run from outside: a signal, a closed terminal, the end of the session. Whatever the threads
// are at, what the run would leave behind is taken away first.
#pragma once

#include <functional>

// While it lives, its action is part of such an end; newest first. An action comes on another thread, so it
// may touch nothing that its maker's thread changes meanwhile.
class AtEndOfRun
{
public:
    explicit AtEndOfRun(std::function<void()> action);
    ~AtEndOfRun();
    AtEndOfRun(const AtEndOfRun&) = delete;
    AtEndOfRun& operator=(const AtEndOfRun&) = delete;
};

// While it lives, such an end waits: for a step that makes what an action takes away. May be nested.
class EndOfRunWaits
{
public:
    EndOfRunWaits();
    ~EndOfRunWaits();
    EndOfRunWaits(const EndOfRunWaits&) = delete;
    EndOfRunWaits& operator=(const EndOfRunWaits&) = delete;
};

// Logs the reason and does all actions. Then no thread gets past either class any more: the caller ends the
// process.
void EndRun(const wchar_t* reason);
