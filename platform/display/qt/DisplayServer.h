// SPDX-License-Identifier: MIT
// Asks a display server before Qt does: for one that takes the connection and says nothing, such as the end
// of a broken `ssh -X`, Qt waits for ever.
#pragma once

#include <memory>
#include <string>

namespace platform
{

// A connection to the server that the environment names, for a platform of Qt's, "xcb" or one of Wayland's;
// null where none can be had. The server has 10 seconds; `problem` says when it was silent.
// The connection is kept until Qt has its own: an X server that loses its last client begins anew, and drops
// who comes meanwhile.
std::shared_ptr<void> ConnectToServer(const std::string& qtPlatform, std::string& problem);

} // namespace platform
