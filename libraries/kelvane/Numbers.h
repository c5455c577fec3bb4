// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/Oriska.h"

#include <string>

namespace kelvane
{

// `number` is a finite decimal number such as "-1234.50", with `digits` behind the point (none: no point); it
// is shown in the user's regional format with as many.
ZTString ShowDecimal(const std::string& number, int digits, bool grouping);

} // namespace kelvane
