// SPDX-License-Identifier: MIT
// What the system tells of sockets that a library owns.
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include <curl/curl.h>

// Makes a call in which a write to a connection that the other side has closed does not end the process:
// libcurl leaves the signal alone when it is told to use none, and the TLS library writes without
// MSG_NOSIGNAL. For the calling thread alone.
void CallWithoutBrokenPipes(const std::function<void()>& call);

// The address at the other end, as numbers; left alone where the system cannot tell. False when the
// connection has ended.
bool PeerAddress(curl_socket_t socket, std::string& address);

// Whether two connections lead to one address. True also when `left` has ended again: it will get nothing.
inline bool SamePeer(curl_socket_t left, curl_socket_t right)
{
    std::string one;
    std::string other;
    return !PeerAddress(left, one) || (PeerAddress(right, other) && !one.empty() && one == other);
}

// Bytes that our own system has taken and the other side's has not acknowledged yet; 0 for no socket. On
// Windows those alone that are on their way, without what waits to be sent, and 0 before Windows 10.
int UnacknowledgedBytes(curl_socket_t socket);

// Wait for at most that long, not at all for a limit below 1 ms. Readable is also a connection that has
// ended.
bool IsReadable(curl_socket_t socket, std::chrono::milliseconds limit);
bool IsBroken(curl_socket_t socket, std::chrono::milliseconds limit);

// Bytes received, 0 when none are there yet, -1 when none will come.
int Receive(curl_socket_t socket, char* buffer, int capacity);

// Whether this system's libcurl sends a file in plain text under TLS on a data connection that the server
// opened, as 7.87.0 to 7.88.1 do (https://github.com/curl/curl/issues/10666).
bool LeavesDirectDataReadable();

// 0, or a system's error code.
int CloseSocket(curl_socket_t socket);
