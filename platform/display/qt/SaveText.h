// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace platform
{

// Writes a text as UTF-8 into a new file that only its owner may read, and gives that the wanted name once it
// is whole: a link of that name is replaced and never followed, and a failure leaves what was there. Returns
// what went wrong in the system's words, or an empty text.
QString SaveText(const QString& path, const QString& text);

} // namespace platform
