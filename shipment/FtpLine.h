// SPDX-License-Identifier: MIT
// The way of a worker thread's text to the console.
#pragma once

#include "foundation/Oriska.h"

// Posts a copy of the line to the console, which owns it from then on. The text carries its own line end.
// Any thread may call it; a line that cannot be posted is lost.
void PostFtpLine(const ZTString& line);
