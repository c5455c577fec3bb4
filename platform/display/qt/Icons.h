// SPDX-License-Identifier: MIT
// An icon resource in all its sizes, for a window's title bar and the task bar.
#pragma once

#include "platform/resource/Resources.h"

#include <QIcon>

namespace platform
{

// Empty when the handle is not an icon's or its images cannot be read.
QIcon ToQIcon(HICON icon);

} // namespace platform
