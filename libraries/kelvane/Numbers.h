// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/Oriska.h"

#include <string>

namespace kelvane
{

// `number` is a finite decimal number such as "-1234.50", with `digits` after the point (none: no point); it
// is shown in the user's regional format with as many, without groups.
ZTString ShowDecimal(const std::string& number, int digits);

} // namespace kelvane
