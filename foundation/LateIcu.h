// SPDX-License-Identifier: MIT
// ICU's larger library, libicui18n, is loaded when a number or a zone's name first needs it: linked, it would
// cost runs that show no report 1.2 MB for nothing. libicuuc comes from the same package.
#pragma once

#include <dlfcn.h>
#include <unicode/uvernum.h>

// A function of that library by the name it has there, which ends with the version; null where it cannot be
// had. The library stays to the end of the process.
template <typename Function>
Function* LateIcuFunction(const char* name)
{
    void* const library = dlopen("libicui18n.so." U_ICU_VERSION_SHORT, RTLD_NOW | RTLD_LOCAL);
    return library ? reinterpret_cast<Function*>(dlsym(library, name)) : nullptr;
}

#define LATE_ICU_NAME(function) #function
// The macro is what puts the version behind the name, as ICU's own headers do.
#define LATE_ICU(function) LateIcuFunction<decltype(function)>(LATE_ICU_NAME(function))
