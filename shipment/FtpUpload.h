// SPDX-License-Identifier: MIT
// The upload thread of a shipment: passive mode first, direct mode when that moved nothing, then the result
// and the sizes as console lines.
#pragma once

#include "foundation/Oriska.h"

#include <atomic>

// What the thread is to send. Made with new by the starter; from the thread's start on it belongs to FTPProc.
struct FTPProcArgs
{
    ZTString localFile;  // full path
    ZTString remoteFile; // bare name on the server
};

// Thread procedure for _beginthread; `args` is an FTPProcArgs. Nobody waits for the thread.
void FTPProc(void* args);

// Set by FTPProc when all its lines are posted and it no longer needs the local file; cleared before its
// start.
extern std::atomic<bool> gbFTPDone;
