// SPDX-License-Identifier: MIT
#include "foundation/TypeName.h"

#include <cxxabi.h>

std::unique_ptr<char, FreeDeleter> UndecoratedName(const std::type_info& type)
{
    return std::unique_ptr<char, FreeDeleter>(abi::__cxa_demangle(type.name(), nullptr, nullptr, nullptr));
}
