// SPDX-License-Identifier: MIT
// A network and a view of /etc of the test's own: port 21, and host names that lead to it. Linux, as root. On
// Windows there is the first function alone, for its named events.
#pragma once

#include "tests/support/TestFolder.h"

#include <sys/types.h>

// Puts the process, and what it starts, into a network of loopback alone, with named events of its own. Call
// it before any thread is made. False, with the reason on standard error, where that is not allowed.
bool EnterOwnNetwork();

// From now on this process sees `content` in place of the file `path`, until that is unmounted.
void ReplaceSystemFile(const fs::path& path, const std::string& content);

// Makes `host` an alias of 127.0.0.1.
void PointHostHere(const std::string& host);

// vsftpd on 127.0.0.1:21 with one account. Uploads lie in Directory(), which is gone with the object.
class RealFtpServer
{
public:
    // `settings` are further lines of its configuration.
    RealFtpServer(const std::string& user, const std::string& password, const std::string& settings = "");
    ~RealFtpServer();

    const fs::path& Directory() const { return mDirectory.Path(); }

private:
    TestFolder mDirectory{"tavo-test-"};
    TestFolder mEmpty{"tavo-empty-"}; // where it has no need of files: its service makes one when it starts
    pid_t mProcess = -1;
};
