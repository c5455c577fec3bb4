// SPDX-License-Identifier: MIT
// Shows nothing and has nobody before it: waits end by Wake or time alone.
#pragma once

#include "platform/dialogs/Display.h"

namespace platform
{

std::unique_ptr<Display> MakeNoDisplay();

} // namespace platform
