// SPDX-License-Identifier: MIT
#include "foundation/TypeName.h"

#include <cxxabi.h>

Owned<char, std::free> UndecoratedName(const std::type_info& type)
{
    return Owned<char, std::free>(abi::__cxa_demangle(type.name(), nullptr, nullptr, nullptr));
}

ZTString DescribeContainer(const char* element, const char* container)
{
    return _StrFormat(L"{0:S} in {1:S}", {element != nullptr ? element : "unknown",
                                          container != nullptr ? container : "CleanableVector"});
}
