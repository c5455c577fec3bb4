// SPDX-License-Identifier: MIT
// What the system tells of sockets that a library owns.
#pragma once

#include <csignal>

// While it lives, a write to a connection that the other side has closed does not end the process: libcurl
// leaves the signal alone when it is told to use none, and the TLS library writes without MSG_NOSIGNAL. For
// the calling thread alone.
class BrokenPipeBlock
{
public:
    BrokenPipeBlock();
    ~BrokenPipeBlock();
    BrokenPipeBlock(const BrokenPipeBlock&) = delete;
    BrokenPipeBlock& operator=(const BrokenPipeBlock&) = delete;

private:
    sigset_t mPipe{};
    sigset_t mBefore{};
};

// Whether two connections lead to one address. True also when `left` has ended again: it will get nothing.
bool SamePeer(int left, int right);

// Bytes that our own system has taken and the other side's has not acknowledged yet; 0 for no socket.
int UnacknowledgedBytes(int socket);
