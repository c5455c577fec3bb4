// SPDX-License-Identifier: MIT
// From the start to the archive on a real server.
#include "tests/shipment/ShipmentRun.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

namespace fs = std::filesystem;
using testing::ElementsAre;

namespace
{

constexpr int kFolders = 50;
constexpr int kFilesInEach = 40;

// Names that file systems, archivers, list files and command lines could stumble over.
const std::vector<std::string> kOddNames = {
    "two  blanks.log",
    "it's.log",
    "mid\"dle.log",
    "\xD0\xBA\xD0\xB8\xD1\x80\xD0\xB8\xD0\xBB\xD0\xBB\xD0\xB8\xD1\x86\xD0\xB0.log",
    "\xE6\x97\xA5\xE5\xBF\x97.log",
    "\xF0\x9F\x98\x80.log",
    std::string(200, 'x'),
    "..\\x",
    "CON",
    "aux.txt",
    "-switch.log",
    "@list.log",
    "!bang.log",
    "name.log;type=a",
    "100%.log",
};

// Relative path to content.
std::map<std::string, std::string> MakeTree(const fs::path& root)
{
    std::map<std::string, std::string> fresh;
    for (int f = 0; f < kFolders; ++f)
        for (int n = 0; n < kFilesInEach; ++n)
        {
            const std::string path =
                "folder " + std::to_string(f) + "/" + std::to_string(f) + "-" + std::to_string(n) + ".log";
            WriteFile(root / path, "content of " + path);
            if (n % 4 == 0)
                MakeOld(root / path);
            else
                fresh[path] = "content of " + path;
        }
    for (const std::string& name : kOddNames)
    {
        WriteFile(root / "old" / name, "old");
        MakeOld(root / "old" / name);
        WriteFile(root / "fresh" / ("new " + name), name);
        fresh["fresh/new " + name] = name;
    }
    return fresh;
}

std::map<std::string, std::string> ReadTree(const fs::path& root)
{
    std::map<std::string, std::string> found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root))
        if (entry.is_regular_file())
            found[fs::relative(entry.path(), root).string()] = ReadFile(entry.path());
    return found;
}

} // namespace

using WholeShipment = ShipmentTest;

TEST_F(WholeShipment, BringsEveryFreshFileAndNothingElse)
{
    std::map<std::string, std::string> expected = MakeTree(Logs());
    const fs::path kept = folder.Path() / "kept.zip";
    ReplaceArchiver("\"$REAL\" \"$@\"; result=$?; cp '" + (Logs() / "case 4711.zip").string() + "' '" +
                    kept.string() + "'; exit $result");
    const RealFtpServer server(kFtpUser, kFtpPassword);
    // No locale: names are UTF-8 all the same.
    ProgramStart start = Unattended(" case 4711 ");
    start.environment = {{"LANG", "C"}, {"LC_ALL", "C"}};
    const ProgramOutcome outcome = folder.Run(start);
    ASSERT_TRUE(outcome.ended) << outcome.console;
    EXPECT_EQ(0, outcome.exitCode);

    // The archive that arrived is the one that was packed.
    const std::string packed = ReadFile(kept);
    ASSERT_GT(packed.size(), 10000U) << outcome.console;
    ASSERT_TRUE(packed == ReadFile(server.Directory() / "case 4711.zip"));
    std::map<std::string, std::string> found = ReadTree(Unpack(kept));
    EXPECT_EQ(1U, found.erase("uploadIgnoreList.txt")); // in the tree that is packed, and nothing excludes it
    EXPECT_EQ(1U, found.erase("Tavo.log"));
    EXPECT_EQ(expected, found);
    EXPECT_THAT(Leftovers(), ElementsAre());

    const std::string logs = Logs().string() + "/";
    const std::vector<std::string> lines = ShipmentLines(outcome);
    const auto ignoring = std::find(lines.begin(), lines.end(), "FTP_LOG: Ignoring:");
    const auto compression = std::find_if(lines.begin(), lines.end(),
                                          [](const std::string& line)
                                          { return line.find("Starting compression") != std::string::npos; });
    ASSERT_NE(lines.end(), ignoring);
    ASSERT_NE(lines.end(), compression);
    EXPECT_EQ(std::ptrdiff_t(kFolders * kFilesInEach / 4 + kOddNames.size()), compression - ignoring - 1);
    EXPECT_THAT(std::vector<std::string>(lines.begin(), ignoring),
                ElementsAre("FTP_LOG: Sending logs in: " + logs,
                            "FTP_LOG: Sending logs to support as: " + logs + "case 4711.zip"));
    EXPECT_THAT(std::vector<std::string>(compression, lines.end()),
                ElementsAre("FTP_LOG: Starting compression via: [\"" + (folder.Path() / "7za.exe").string() +
                                "\" a -r -ssw -x@uploadIgnoreList.txt \"" + logs + "case 4711.zip\" *]",
                            "FTP_LOG: Please wait...", "FTP_LOG: Compression finished.  Exit Code: 0",
                            "FTP_LOG: Beginning upload", "FTP_LOG: Connecting to " TAVO_SUPPORT_HOST ":21",
                            "FTP_LOG: 220 (vsFTPd 3.0.3)", "FTP_LOG: Connected to " TAVO_SUPPORT_HOST,
                            "FTP_LOG: AUTH TLS", "FTP_LOG: 530 Please login with USER and PASS.",
                            "FTP_LOG: AUTH SSL", "FTP_LOG: 530 Please login with USER and PASS.",
                            "FTP_LOG: USER zt-ftp", "FTP_LOG: 331 Please specify the password.",
                            "FTP_LOG: PASS ****", "FTP_LOG: 230 Login successful.",
                            "FTP_LOG: Logged in as zt-ftp", "FTP_LOG: PWD",
                            "FTP_LOG: 257 \"" + server.Directory().string() + "\" is the current directory",
                            "FTP_LOG: OPTS UTF8 ON", "FTP_LOG: 200 Always in UTF8 mode.", "FTP_LOG: EPSV",
                            testing::StartsWith("FTP_LOG: 229 Entering Extended Passive Mode (|||"),
                            "FTP_LOG: TYPE I", "FTP_LOG: 200 Switching to Binary mode.",
                            "FTP_LOG: STOR case 4711.zip", "FTP_LOG: 150 Ok to send data.",
                            "FTP_LOG: Sending case 4711.zip", "FTP_LOG: 226 Transfer complete.",
                            "FTP_LOG: The server has received case 4711.zip", "FTP_LOG: QUIT",
                            "FTP_LOG: 221 Goodbye.", "FTP_LOG: Disconnected",
                            "FTP_LOG: Successfully sent logs to Support"));
    EXPECT_NE(std::string::npos,
              outcome.console.find("FTP_LOG: 100% done, " + std::to_string(packed.size()) + " sent"));
}

TEST_F(WholeShipment, TheButtonShipsUnderTheDateAndOtherButtonsWorkMeanwhile)
{
    WriteFile(Logs() / "fresh.log", "fresh");
    const RealFtpServer server(kFtpUser, kFtpPassword);
    ProgramStart start;
    start.input = {"FTP Logs to Support", "CRC64", "Cancel", "Close"};
    const ProgramOutcome outcome = folder.Run(start);
    EXPECT_TRUE(outcome.ended) << outcome.console;
    const std::time_t now = std::time(nullptr);
    const std::tm today = *std::localtime(&now);
    const std::string name = "Logs-" + std::to_string(today.tm_year + 1900) + "-" +
                             std::to_string(today.tm_mon + 1) + "-" + std::to_string(today.tm_mday) + ".zip";
    ASSERT_TRUE(fs::exists(server.Directory() / name)) << outcome.console;
    const fs::path unpacked = Unpack(server.Directory() / name);
    EXPECT_EQ("fresh", ReadFile(unpacked / "fresh.log"));
    EXPECT_EQ("", ReadFile(unpacked / "uploadIgnoreList.txt"));
    EXPECT_TRUE(fs::exists(unpacked / "uploadIgnoreList.txt"));
    EXPECT_THAT(outcome.console, testing::HasSubstr(" a -r -ssw  \""));
    EXPECT_THAT(Leftovers(), ElementsAre());
}

TEST_F(WholeShipment, OddArchiveNamesArriveWithUnderscoresWhereNeeded)
{
    const struct
    {
        std::string wanted;
        std::string arrives;
    } rows[] = {
        {"..\\x", ".._x.zip"},
        {"\xD0\x9B\xD0\xBE\xD0\xB3 \xE6\x97\xA5\xE5\xBF\x97 \xF0\x9F\x98\x80",
         "\xD0\x9B\xD0\xBE\xD0\xB3 \xE6\x97\xA5\xE5\xBF\x97 \xF0\x9F\x98\x80.zip"},
        {std::string(200, 'x'), std::string(200, 'x') + ".zip"},
        {"it's 100% #1;type=a.zip", "it's 100% #1;type=a.zip.zip"},
    };
    const RealFtpServer server(kFtpUser, kFtpPassword);
    for (const auto& [wanted, arrives] : rows)
    {
        const ProgramOutcome outcome = Ship(wanted);
        EXPECT_TRUE(outcome.ended);
        EXPECT_TRUE(fs::exists(server.Directory() / arrives)) << outcome.console;
    }
    EXPECT_THAT(Leftovers(), ElementsAre());
}

TEST_F(WholeShipment, ARealServersTlsIsUsed)
{
    const fs::path keys = folder.Path() / "keys.pem";
    const std::string command =
        "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=server -keyout '" + keys.string() +
        "' -out '" + keys.string() + ".crt' 2>/dev/null";
    ASSERT_EQ(0, std::system(command.c_str()));
    const RealFtpServer server(
        kFtpUser, kFtpPassword,
        "ssl_enable=YES\nforce_local_logins_ssl=YES\nforce_local_data_ssl=YES\nrsa_cert_file=" +
            keys.string() + ".crt\nrsa_private_key_file=" + keys.string() + "\n");
    WriteFile(Logs() / "fresh.log", RandomBytes(3000000));
    const ProgramOutcome outcome = Ship("secure");
    EXPECT_THAT(outcome.console, testing::HasSubstr("FTP_LOG: The connection is encrypted"));
    EXPECT_THAT(Verdicts(outcome),
                ElementsAre("Compression finished.  Exit Code: 0", "Successfully sent logs to Support"))
        << outcome.console;
    EXPECT_EQ(3000000U, ReadFile(Unpack(server.Directory() / "secure.zip") / "fresh.log").size());
}
