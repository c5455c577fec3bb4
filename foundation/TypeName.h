// SPDX-License-Identifier: MIT
#pragma once

#include "base/Owned.h"
#include "foundation/Oriska.h"

#include <cstdlib>
#include <typeinfo>

// The name of a type as the source spells it; null when the run-time library cannot tell.
Owned<char, std::free> UndecoratedName(const std::type_info& type);

// "int in CleanableVector<int>"; a name that the run-time library cannot tell is null.
ZTString DescribeContainer(const char* element, const char* container);
