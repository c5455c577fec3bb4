// SPDX-License-Identifier: MIT
// A shipment of the program that ships, in a folder, a network and a view of /etc of its own.
#pragma once

#include "tests/support/OwnNetwork.h"
#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

extern bool gHasOwnNetwork;

constexpr const char* kFtpUser = "zt-ftp";
constexpr const char* kFtpPassword = "Kesto-42";

class ShipmentTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!gHasOwnNetwork)
            GTEST_SKIP() << "a network of its own needs root";
        std::filesystem::create_directories(Logs());
    }

    std::filesystem::path Logs() const { return folder.Path() / "Logs"; }
    // An unattended shipment.
    ProgramOutcome Ship(const std::string& name) const { return folder.Run(Unattended(name)); }
    static ProgramStart Unattended(const std::string& name)
    {
        ProgramStart start;
        start.arguments = {"-FTP_LOG=" + name, "-AUTOCLOSE", "yes"};
        start.limit = std::chrono::seconds(120);
        return start;
    }
    // Puts a shell script in the place of the archiver; "$REAL" is the real one.
    void ReplaceArchiver(const std::string& script) const;
    // What a shipment must not leave in the log directory.
    std::vector<std::string> Leftovers() const;

    ProgramFolder folder;
};

void WriteFile(const std::filesystem::path& path, const std::string& content);
std::string ReadFile(const std::filesystem::path& path);
void MakeOld(const std::filesystem::path& path, int days = 30);
std::string RandomBytes(std::size_t count);

// The shipment's lines without times and progress.
std::vector<std::string> ShipmentLines(const ProgramOutcome& outcome);
// Of these, those that begin with one of the shipment's own texts on what went wrong and how it ended.
std::vector<std::string> Verdicts(const ProgramOutcome& outcome);

// Unpacks an archive into a new directory beside it and gives that.
std::filesystem::path Unpack(const std::filesystem::path& archive, int expected = 0);
