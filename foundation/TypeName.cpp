// SPDX-License-Identifier: MIT
#include "foundation/TypeName.h"

#include <cxxabi.h>

std::unique_ptr<char, FreeDeleter> UndecoratedName(const std::type_info& type)
{
    return std::unique_ptr<char, FreeDeleter>(abi::__cxa_demangle(type.name(), nullptr, nullptr, nullptr));
}

ZTString DescribeContainer(const char* element, const char* container)
{
    return _StrFormat(L"{0:S} in {1:S}", {element != nullptr ? element : "unknown",
                                          container != nullptr ? container : "CleanableVector"});
}
