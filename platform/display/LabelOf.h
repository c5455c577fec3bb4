// SPDX-License-Identifier: MIT
#pragma once

#include "platform/dialogs/Window.h"

namespace platform
{

// The label that names an edit or combo box: the nearest one to its left on the same line, else one close
// above it; null when the template has none. A button or check box has its own caption.
PLATFORM_EXPORT const Window* LabelOf(const Window& control);

} // namespace platform
