// SPDX-License-Identifier: MIT
// A shipment of the program that ships, in a folder, a network and a view of /etc of its own.
#pragma once

#include "tests/support/OwnNetwork.h"
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

extern bool gHasOwnNetwork;

constexpr const char* kFtpUser = "zt-ftp";
constexpr const char* kFtpPassword = "Kesto-42";
constexpr std::uint16_t kFtpPort = 21;

// The shipment's lines without times, progress and "FTP_LOG: ".
std::vector<std::string> ShipmentLines(const ProgramOutcome& outcome);
// Of these, those that begin with one of the shipment's own texts on what went wrong and how it ended.
std::vector<std::string> Verdicts(const ProgramOutcome& outcome);
// Two of them.
const std::string kDirect = "Passive upload failed - trying direct";
const std::string kSent = "Successfully sent logs to Support";
// All of them when the archiver has made no archive.
std::vector<std::string> NothingPacked(const std::string& exitCode);

// For a real server that demands TLS.
const std::string kTlsSettings =
    "ssl_enable=YES\nforce_local_logins_ssl=YES\nforce_local_data_ssl=YES\n"
    "rsa_cert_file=" TAVO_SOURCE_DIR "/tests/support/certificates/127.0.0.1.pem\n";

class ShipmentTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!gHasOwnNetwork)
            GTEST_SKIP() << "a network of its own needs root";
        fs::create_directories(Logs());
    }

    fs::path Logs() const { return folder.Path() / "Logs"; }
    static ProgramStart Unattended(const std::string& name, bool asOtherUser = false);
    // How each shipment must end: of itself and in order (a sanitizer that found something gives another exit
    // code), without a password or what a terminal obeys in the text, without an archive or a list left.
    void ExpectOrderlyEnd(const ProgramOutcome& outcome) const;
    // Runs one to such an end.
    ProgramOutcome Ship(const ProgramStart& start) const;
    ProgramOutcome Ship(const std::string& name) const { return Ship(Unattended(name)); }

    // Puts a shell script in the place of the archiver; "$REAL" is the real one.
    void ReplaceArchiver(const std::string& script) const;
    // Gives the folder to the user without rights, with `mode` for `path`.
    void GiveAway(const fs::path& path, fs::perms mode) const;

    ProgramFolder folder;
};

void MakeOld(const fs::path& path, std::chrono::hours age = std::chrono::hours(24 * 30));

// Whether a process, by its number, is gone within two seconds.
bool EndsSoon(const std::string& process);

// The files of an archive: relative path to content.
using Tree = std::map<std::string, std::string>;
Tree Unpack(const fs::path& archive, const std::set<int>& expected = {0});
