// SPDX-License-Identifier: MIT
#include "tests/support/OwnNetwork.h"

#include <crypt.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

constexpr uid_t kUser = 64321; // of no other account

bool EnterOwnNetwork()
{
    // With named events of its own: an unattended run elsewhere must not refuse those in here.
    if (unshare(CLONE_NEWNET | CLONE_NEWNS | CLONE_NEWIPC) != 0 ||
        mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        std::system("ip link set lo up") != 0)
    {
        std::perror("a network of its own");
        return false;
    }
    return true;
}

void ReplaceSystemFile(const fs::path& path, const std::string& content)
{
    const TestFolder directory; // the mount holds what it was
    const fs::path file = directory.Path() / "content";
    WriteFile(file, content);
    if (!fs::exists(path))
        WriteFile(path, ""); // a bare system has no hosts
    fs::permissions(file, fs::status(path).permissions());
    if (mount(file.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) != 0)
        std::perror(path.c_str());
}

void PointHostHere(const std::string& host)
{
    ReplaceSystemFile("/etc/hosts", "127.0.0.1 localhost " + host + "\n");
}

RealFtpServer::RealFtpServer(const std::string& user, const std::string& password,
                             const std::string& settings)
{
    const std::string id = std::to_string(kUser);
    const std::string home = Directory().string();
    crypt_data work{};
    const std::string hash = crypt_r(password.c_str(), "$6$saltsalt$", &work);
    ReplaceSystemFile("/etc/passwd",
                      ReadFile("/etc/passwd") + user + ":x:" + id + ":" + id + "::" + home + ":/bin/sh\n");
    ReplaceSystemFile("/etc/shadow", ReadFile("/etc/shadow") + user + ":" + hash + ":19000:0:99999:7:::\n");
    if (chown(home.c_str(), kUser, kUser) != 0)
        std::perror(home.c_str());

    const TestFolder directory;
    const fs::path configuration = directory.Path() / "vsftpd.conf";
    WriteFile(configuration, "listen=YES\nlisten_address=127.0.0.1\nbackground=NO\nanonymous_enable=NO\n"
                             "local_enable=YES\nwrite_enable=YES\nlocal_umask=022\nutf8_filesystem=YES\n"
                             "seccomp_sandbox=NO\npam_service_name=vsftpd\nxferlog_enable=NO\n"
                             "secure_chroot_dir=" +
                                 mEmpty.Path().string() + "\n" + settings);
    mProcess = fork();
    if (mProcess == 0)
    {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        execl("/usr/sbin/vsftpd", "vsftpd", configuration.c_str(), nullptr);
        std::perror("vsftpd");
        _exit(127);
    }
    if (std::system("timeout 5 sh -c 'until ss -Hltn sport = :21 | grep -q .; do sleep 0.02; done'") != 0)
        std::fputs("vsftpd is not there\n", stderr);
}

RealFtpServer::~RealFtpServer()
{
    kill(mProcess, SIGTERM);
    waitpid(mProcess, nullptr, 0);
    umount2("/etc/passwd", MNT_DETACH);
    umount2("/etc/shadow", MNT_DETACH);
}
