// SPDX-License-Identifier: MIT
// What the tests of the terminal display run in a process of its own, with streams that the test holds.
#pragma once

#include <string_view>

// Runs a scenario by its name; gives the exit code.
int RunScenario(std::string_view name);
