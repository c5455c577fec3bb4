// SPDX-License-Identifier: MIT
// The choice of the MAC address that stands for the machine. Three rules, from strict to none, are tried on
// the list of network adapters; the first that finds an address ends the survey, and the lowest text wins,
// so the order of the list does not matter. A compact log tells what was seen and decided.
#pragma once

#include "foundation/Oriska.h"

#include <winsock2.h>
#include <iphlpapi.h>

#include <string>

// The address as upper-case hexadecimal digits without separators, empty when there is none. Appends to
// `log`, whose first number is the size that the list needs: 0 when the platform gave none.
std::wstring GetMACAddress(std::wstring& log);

// The survey of a list that begins at `first`, which is always looked at, and is closed by a null Next or by
// a record at or past `end`. Appends to `log` all but its head.
std::wstring ChooseMacAddress(const IP_ADAPTER_ADDRESSES* first, const void* end, std::wstring& log);

// Fills `buffer`, which holds `size` characters, from a format with placeholders {n} and {n:spec}; without n
// the running index is taken. A missing value gives "@@@" and ends the text. The text is cut so that its
// terminator fits. Gives the characters produced, or -1 when a value cannot be written.
int FormatToBuffer(const wchar_t* format, wchar_t* buffer, int size, const PlaceholderValues& values);
