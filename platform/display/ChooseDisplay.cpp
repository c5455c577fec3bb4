// SPDX-License-Identifier: MIT
// How the display is chosen: Qt's windows where DISPLAY or WAYLAND_DISPLAY is set, the module loads and a
// display server answers; otherwise the terminal.
#include "platform/dialogs/Display.h"
#include "platform/display/none/NoDisplay.h"
#include "platform/display/terminal/TerminalDisplay.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace platform
{

namespace
{

// What the module libtavoqt.so in the program folder exports under this name: a new display, owned by the
// caller, or null when no display server answers. Called once, on the windows' thread.
using DisplayFactory = Display* (*)();
constexpr const char* kDisplayFactoryName = "tavo_make_display";

bool IsSet(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

// The module lies beside this library.
std::string ModulePath()
{
    Dl_info info{};
    dladdr(reinterpret_cast<const void*>(&UseDisplay), &info);
    const std::string library = info.dli_fname != nullptr ? info.dli_fname : "";
    return library.substr(0, library.rfind('/') + 1) + "libtavoqt.so";
}

std::unique_ptr<Display> MakeQtDisplay()
{
    void* const module = dlopen(ModulePath().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr)
    {
        std::fprintf(stderr, "No windows can be shown: %s\n", dlerror());
        return nullptr;
    }
    const auto factory = reinterpret_cast<DisplayFactory>(dlsym(module, kDisplayFactoryName));
    return std::unique_ptr<Display>(factory != nullptr ? factory() : nullptr);
}

std::unique_ptr<Display> MakeFittingDisplay()
{
    std::unique_ptr<Display> display;
    if (IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY"))
        display = MakeQtDisplay();
    return display != nullptr ? std::move(display) : MakeTerminalDisplay();
}

} // namespace

std::unique_ptr<Display> MakeDisplay(DisplayKind kind)
{
    switch (kind)
    {
    case DisplayKind::Automatic:
        return MakeFittingDisplay();
    case DisplayKind::Qt:
        return MakeQtDisplay();
    case DisplayKind::Terminal:
        return MakeTerminalDisplay();
    case DisplayKind::None:
        return MakeNoDisplay();
    }
    return nullptr;
}

} // namespace platform
