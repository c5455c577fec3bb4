// SPDX-License-Identifier: MIT
#include "platform/display/qt/DisplayServer.h"

#include "base/RunWithin.h"

#include <dlfcn.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <system_error>

namespace platform
{

namespace
{

constexpr std::chrono::seconds kServerPatience{10}; // one that is started on demand takes a few

using Connection = std::shared_ptr<void>;

Connection ConnectToX()
{
    const std::shared_ptr<xcb_connection_t> connection(xcb_connect(nullptr, nullptr), xcb_disconnect);
    return xcb_connection_has_error(connection.get()) == 0 ? connection : nullptr;
}

bool StartsWithSlash(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr && *value == '/';
}

// By the library that Qt's own part for Wayland brings along, where that is installed.
Connection ConnectToWayland()
{
    if (std::getenv("WAYLAND_SOCKET") != nullptr)
        return std::make_shared<int>(); // a connection that is Qt's alone
    if (!StartsWithSlash("XDG_RUNTIME_DIR") && !StartsWithSlash("WAYLAND_DISPLAY"))
        return nullptr; // there is none, about which the library would complain
    void* const library = dlopen("libwayland-client.so.0", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        return nullptr;
    const auto connect = reinterpret_cast<void* (*)(const char*)>(dlsym(library, "wl_display_connect"));
    const auto roundtrip = reinterpret_cast<int (*)(void*)>(dlsym(library, "wl_display_roundtrip"));
    const auto disconnect = reinterpret_cast<void (*)(void*)>(dlsym(library, "wl_display_disconnect"));
    void* const display = connect(nullptr);
    if (display == nullptr)
        return nullptr;
    const Connection connection(display, disconnect);
    return roundtrip(display) != -1 ? connection : nullptr;
}

// Nothing when time ran out. Where there is no thread to be had, Qt has none either.
std::optional<Connection> ConnectInTime(Connection (*connect)())
{
    try
    {
        return RunWithin(Clock::now() + kServerPatience, connect);
    }
    catch (const std::system_error&)
    {
        return Connection();
    }
}

} // namespace

std::shared_ptr<void> ConnectToServer(const std::string& qtPlatform, std::string& problem)
{
    const bool isX = qtPlatform == "xcb";
    const std::optional<Connection> connection = ConnectInTime(isX ? ConnectToX : ConnectToWayland);
    if (connection)
        return *connection;
    const char* const name = std::getenv(isX ? "DISPLAY" : "WAYLAND_DISPLAY");
    if (problem.empty()) // the first one is the one that was wanted
        problem = "the display \"" + std::string(name != nullptr ? name : "wayland-0") +
                  "\" did not answer in " + std::to_string(kServerPatience.count()) + " s";
    return nullptr;
}

} // namespace platform
