// SPDX-License-Identifier: MIT
// What of the process and its clock the two systems name differently.
#pragma once

#include <string>

namespace kelvane
{

unsigned long ProcessId();

// The present moment as "2026-11-24 20:51:14.123 +0100": the local wall clock and its offset from UTC.
std::string LocalMoment();

// Names the calling thread for debuggers and process lists.
void NameThread(const wchar_t* name);

} // namespace kelvane
