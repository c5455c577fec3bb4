// SPDX-License-Identifier: MIT
// How the display is chosen: Qt's windows where DISPLAY or WAYLAND_DISPLAY is set, the module loads and a
// display server answers; otherwise the terminal.
#include "platform/dialogs/Display.h"
#include "platform/display/Module.h"
#include "platform/display/none/NoDisplay.h"
#include "platform/display/terminal/TerminalDisplay.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

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

std::unique_ptr<Display> MakeQtDisplay()
{
    const auto factory = reinterpret_cast<DisplayFactory>(FindInModule("libtavoqt.so", kDisplayFactoryName));
    if (factory == nullptr)
        std::fprintf(stderr, "No windows can be shown: %s\n", dlerror());
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
