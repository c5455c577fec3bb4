// SPDX-License-Identifier: MIT
#include "tests/shipment/ShipmentRun.h"

#include <csignal>
#include <cstdlib>
#include <pwd.h>
#include <regex>
#include <unistd.h>

bool gHasOwnNetwork = false;

ProgramStart ShipmentTest::Unattended(const std::string& name, bool asOtherUser)
{
    return {.arguments = {"-FTP_LOG=" + name, "-AUTOCLOSE", "yes"},
            .limit = std::chrono::seconds(120),
            .asOtherUser = asOtherUser,
            .awaited = "FTP_LOG: "}; // the input stays open: the program has to end by itself
}

ProgramOutcome ShipmentTest::Ship(const ProgramStart& start) const
{
    ProgramOutcome outcome = folder.Run(start);
    ExpectOrderlyEnd(outcome);
    return outcome;
}

void ShipmentTest::ExpectOrderlyEnd(const ProgramOutcome& outcome) const
{
    EXPECT_EQ(0, outcome.exitCode) << outcome.console << outcome.errors;
    EXPECT_EQ(std::string::npos, outcome.console.find(kFtpPassword));
    EXPECT_THAT(outcome.console, testing::Each(testing::AnyOf('\n', testing::Ge(' '), testing::Lt('\0'))));
    std::vector<std::string> left;
    std::error_code ignored; // it may be missing
    for (const fs::directory_entry& entry : fs::directory_iterator(Logs(), ignored))
        left.push_back(entry.path().filename().string());
    EXPECT_THAT(left, testing::Not(testing::Contains(
                          testing::AnyOf(testing::HasSubstr(".zip"), testing::HasSubstr("uploadIgnore")))));
}

void ShipmentTest::ReplaceArchiver(const std::string& script) const
{
    const fs::path archiver = folder.Path() / "7za.exe";
    const fs::path real = folder.Path() / "real";
    fs::rename(archiver, real);
    // Another shell would unblock the signals that it gets blocked.
    WriteFile(archiver, "#!/bin/bash\nREAL='" + real.string() + "'\n" + script);
    fs::permissions(archiver, fs::perms(0755));
}

void ShipmentTest::GiveAway(const fs::path& path, fs::perms mode) const
{
    const uid_t nobody = getpwnam("nobody")->pw_uid;
    EXPECT_EQ(0, chown(folder.Path().c_str(), nobody, nobody));
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder.Path()))
        EXPECT_EQ(0, lchown(entry.path().c_str(), nobody, nobody));
    fs::permissions(path, mode);
}

void MakeOld(const fs::path& path, std::chrono::hours age)
{
    fs::last_write_time(path, fs::file_time_type::clock::now() - age);
}

std::vector<std::string> ShipmentLines(const ProgramOutcome& outcome)
{
    const std::string prefix = "FTP_LOG: ";
    std::vector<std::string> lines;
    for (const std::string& line : Lines(WithoutTimes(outcome.console)))
    {
        const bool isOurs = line.rfind(prefix, 0) == 0;
        // Others are names in the list.
        if ((isOurs || !lines.empty()) && line.find("% done, ") == std::string::npos)
            lines.push_back(line.substr(isOurs ? prefix.size() : 0));
    }
    return lines;
}

std::vector<std::string> Verdicts(const ProgramOutcome& outcome)
{
    std::vector<std::string> lines = ShipmentLines(outcome);
    static const std::regex verdict(
        "(Error - |Passive upload|Successfully|Log FTP failed|### |Failed to launch|"
        "Timed out|Compression finished).*");
    std::erase_if(lines, [](const std::string& line) { return !std::regex_match(line, verdict); });
    return lines;
}

std::vector<std::string> NothingPacked(const std::string& exitCode)
{
    const std::string error = "1004 Cannot open the local file: No such file or directory";
    return {"Compression finished.  Exit Code: " + exitCode, "Error - " + error, kDirect, "Error - " + error,
            "Log FTP failed with: " + error};
}

bool EndsSoon(const std::string& process)
{
    const pid_t id = std::stoi(process);
    for (int tries = 0; kill(id, 0) == 0 && tries < 100; ++tries)
        usleep(20'000); // a new parent has to collect it
    return kill(id, 0) != 0;
}

Tree Unpack(const fs::path& archive, const std::set<int>& expected)
{
    const fs::path target = archive.string() + ".unpacked";
    const std::string command = "'" TAVO_PROGRAM_DIR "/7za.exe' x -y -o'" + target.string() + "' '" +
                                archive.string() + "' >/dev/null </dev/null";
    EXPECT_THAT(expected, testing::Contains(WEXITSTATUS(std::system(command.c_str()))));
    Tree files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(target))
        if (entry.is_regular_file())
            files[fs::relative(entry.path(), target).string()] = ReadFile(entry.path());
    return files;
}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    gHasOwnNetwork = EnterOwnNetwork();
    if (gHasOwnNetwork)
        PointHostHere(TAVO_SUPPORT_HOST);
    return RUN_ALL_TESTS();
}
