// SPDX-License-Identifier: MIT
// What ends a dialog when the person's input has ended.
#pragma once

namespace platform
{

// Once a person's input has ended: posts to the dialog on top that it is canceled, as soon as the dialog's
// own loop asks for messages. False when nothing was done.
bool CancelTopDialog();

} // namespace platform
