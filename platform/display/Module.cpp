// SPDX-License-Identifier: MIT
#include "platform/display/Module.h"

#include <dlfcn.h>

#include <string>

namespace platform
{

void* FindInModule(const char* file, const char* name)
{
    Dl_info info{};
    dladdr(reinterpret_cast<const void*>(&FindInModule), &info);
    const std::string library = info.dli_fname != nullptr ? info.dli_fname : "";
    const std::string path = library.substr(0, library.rfind('/') + 1) + file;
    void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    return module != nullptr ? dlsym(module, name) : nullptr;
}

} // namespace platform
