// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/Oriska.h"

#include <cstdlib>
#include <memory>
#include <typeinfo>

struct FreeDeleter
{
    void operator()(void* block) const { std::free(block); }
};

// The name of a type as the source spells it; null when the run-time library cannot tell.
std::unique_ptr<char, FreeDeleter> UndecoratedName(const std::type_info& type);

// "int in CleanableVector<int>"; a name that the run-time library cannot tell is null.
ZTString DescribeContainer(const char* element, const char* container);
