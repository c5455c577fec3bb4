// SPDX-License-Identifier: MIT
// What the library's other parts need of the log.
#pragma once

#include "foundation/Kelvane.h"

namespace kelvane
{

// The setting that names the log's directory; it counts until the directory was asked for the first time.
void SetLogDirectorySetting(eConfigID setting);

// The name that stands in the calling thread's lines.
void SetThreadNameInLog(const wchar_t* name);

} // namespace kelvane
