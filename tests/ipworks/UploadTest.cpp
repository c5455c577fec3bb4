// SPDX-License-Identifier: MIT
// What the component does when all goes well, and how it answers what it does not know.
#include "tests/ipworks/Recorder.h"
#include "tests/support/ProgramFolder.h"
#include "tests/support/ScriptedFtpServer.h"

#include <gmock/gmock.h>

#include <fstream>

using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

// The order of commands on libcurl; WinINet has one of its own.
const std::vector<std::string> kPassiveCommands = {
    "AUTH TLS",     "AUTH SSL", "USER zt-ftp", "PASS Kesto-42",    "PWD",
    "OPTS UTF8 ON", "EPSV",     "TYPE I",      "STOR archive.zip", "QUIT"};

void ExpectTrueProgress(const Recorder& recorder, std::int64_t total)
{
    ASSERT_FALSE(recorder.progress.empty());
    std::int64_t before = 0;
    for (std::size_t i = 0; i < recorder.progress.size(); ++i)
    {
        const Recorder::Progress& event = recorder.progress[i];
        EXPECT_GT(event.bytes, before);
        EXPECT_EQ(event.bytes * 100 / total, event.percent);
        if (i > 0 && event.bytes < total)
        {
            EXPECT_GE(event.at - recorder.progress[i - 1].at, std::chrono::milliseconds(100));
        }
        before = event.bytes;
    }
    EXPECT_EQ(total, before);
}

} // namespace

TEST(Upload, PassiveBringsTheFileAndTellsOfEveryStep)
{
    const std::string content = TestBytes(300000);
    const TemporaryFile file(content);
    ScriptedFtpServer server({});
    Recorder recorder(server.Port());
    recorder.SetLocalFile(file.Path());
    EXPECT_EQ(0, recorder.Upload()) << recorder.LastError();
    EXPECT_TRUE(content == server.Uploaded());
    EXPECT_EQ("archive.zip", server.UploadedName());
    EXPECT_EQ("", recorder.LastError());
    ExpectTrueProgress(recorder, 300000);

    const std::string connecting = "status 1 Connecting to 127.0.0.1:" + std::to_string(server.Port());
    EXPECT_THAT(recorder.Of("status"),
                ElementsAre(connecting, "status 2 Connected to 127.0.0.1", "status 4 Logged in as zt-ftp",
                            "status 5 Sending archive.zip", "status 6 The server has received archive.zip",
                            "status 7 Disconnected"));
    EXPECT_EQ("started archive.zip", recorder.events.front());
    EXPECT_EQ("ended 0", recorder.events.back());
    EXPECT_THAT(recorder.Of("<"), testing::Contains("< 226 Received."));
    if (RunsOnWindows())
        return;
    EXPECT_EQ(kPassiveCommands, server.Commands());
    std::vector<std::string> shown;
    for (const std::string& command : kPassiveCommands)
        shown.push_back(command == "PASS Kesto-42" ? "> PASS ****" : "> " + command);
    EXPECT_EQ(shown, recorder.Of(">"));
}

TEST(Upload, DirectLetsTheServerOpenTheDataConnection)
{
    const TemporaryFile file(TestBytes(100000));
    for (const bool hasExtended : {true, false})
    {
        FtpScript script;
        if (!hasExtended)
            script.answers["EPRT"] = "500 What?\r\n";
        ScriptedFtpServer server(script);
        Recorder recorder(server.Port());
        recorder.SetNumber(kIPWorksPassive, 0);
        recorder.SetLocalFile(file.Path());
        EXPECT_EQ(0, recorder.Upload()) << recorder.LastError();
        EXPECT_TRUE(TestBytes(100000) == server.Uploaded());
        if (!hasExtended)
        {
            EXPECT_THAT(server.Commands(), testing::Contains(HasSubstr("PORT 127,0,0,1,")));
        }
    }
}

TEST(Upload, PassiveWithoutTheExtendedCommandIgnoresAForeignAddress)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "WinINet connects to whatever address the server names";
    const TemporaryFile file("content");
    FtpScript script;
    script.answers["EPSV"] = "500 What?\r\n";
    script.passiveAddress = "192,0,2,1";
    ScriptedFtpServer server(script);
    Recorder recorder(server.Port());
    recorder.SetLocalFile(file.Path());
    EXPECT_EQ(0, recorder.Upload()) << recorder.LastError();
    EXPECT_EQ("content", server.Uploaded());
}

TEST(Upload, OneComponentUploadsAgain)
{
    const TemporaryFile file("content");
    ScriptedFtpServer server({});
    Recorder recorder(server.Port());
    recorder.SetLocalFile(file.Path());
    EXPECT_EQ(0, recorder.Upload());
    recorder.SetText(kIPWorksRemoteFile, "again.zip");
    EXPECT_EQ(0, recorder.Upload());
    EXPECT_EQ("again.zip", server.UploadedName());
}

TEST(Upload, RemoteNamesArriveAsTheyAre)
{
    const TemporaryFile file("content");
    for (const char* name :
         {"two  blanks.zip", "100%25.zip", "a#b?c;type=a.zip", "\"quoted\".zip", "back\\slash.zip",
          "\xD0\x9B\xD0\xBE\xD0\xB3.zip", "\xE6\x97\xA5\xE5\xBF\x97.zip", "\xF0\x9F\x98\x80.zip"})
    {
        ScriptedFtpServer server({});
        Recorder recorder(server.Port());
        recorder.SetLocalFile(file.Path());
        recorder.SetText(kIPWorksRemoteFile, name);
        EXPECT_EQ(0, recorder.Upload()) << name << ": " << recorder.LastError();
        EXPECT_EQ(name, server.UploadedName());
    }
}

TEST(Upload, EmptyFileIsConfirmedAndReportsNoByte)
{
    const TemporaryFile file("");
    ScriptedFtpServer server({});
    Recorder recorder(server.Port());
    recorder.SetLocalFile(file.Path());
    EXPECT_EQ(0, recorder.Upload()) << recorder.LastError();
    ASSERT_EQ(1U, recorder.progress.size());
    EXPECT_EQ(0, recorder.progress[0].bytes);
    EXPECT_EQ(100, recorder.progress[0].percent);
}

TEST(Upload, FileThatCannotBeOpenedFailsWithoutAConnection)
{
    const TemporaryFile file("content");
    ScriptedFtpServer server({});
    Recorder recorder(server.Port());
    for (const auto& path : {file.Path().parent_path() / "missing.zip", file.Path().parent_path()})
    {
        recorder.SetLocalFile(path);
        EXPECT_EQ(kIPWorksLocalFileFailed, recorder.Upload());
        EXPECT_THAT(recorder.LastError(), testing::StartsWith("1004 Cannot open the local file: "));
    }
    EXPECT_TRUE(server.Commands().empty());
    EXPECT_THAT(recorder.Of("error"), testing::SizeIs(2));
}

// The size at the start counts: what a writer adds meanwhile is not sent, and what it takes away is no error.
TEST(Upload, FileThatChangesMeanwhileComesToAnEnd)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "an open file cannot be cut there";
    const std::string content = TestBytes(8000000);
    for (const bool grows : {true, false})
    {
        const TemporaryFile file(content);
        FtpScript script;
        script.inSingleBytes = true; // time to change the file between its opening and the first byte
        ScriptedFtpServer server(script);
        Recorder recorder(server.Port());
        recorder.SetLocalFile(file.Path());
        std::thread writer(
            [&]
            {
                while (server.Commands().empty())
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                std::filesystem::resize_file(file.Path(), grows ? 9000000 : 1000000);
            });
        EXPECT_EQ(0, recorder.Upload()) << recorder.LastError();
        writer.join();
        EXPECT_TRUE(content.substr(0, grows ? 8000000 : 1000000) == server.Uploaded());
        EXPECT_EQ(100, recorder.progress.back().percent);
    }
}

TEST(Component, UnknownNumbersAndValuesGiveACodeAndAText)
{
    Recorder recorder(21);
    std::vector<void*> params = {nullptr};
    std::vector<int> lengths = {0};
    const struct
    {
        int result;
        int expected;
        const char* text;
    } rows[] = {
        {recorder.SetNumber(1, 0), kIPWorksUnknownId, "1002 Unknown property: 1"},
        {IPWorks_FTP_Do(recorder.Handle(), 99, 0, params.data(), lengths.data(), 0), kIPWorksUnknownId,
         "1002 Unknown method: 99"},
        {recorder.Config("Colour=blue"), kIPWorksUnknownId, "1002 Unknown configuration: Colour=blue"},
        {recorder.Config(""), kIPWorksUnknownId, "1002 Unknown configuration: "},
        {recorder.Config("CodePage=1252"), kIPWorksBadValue,
         "1003 Bad value in the configuration: CodePage=1252"},
        {recorder.Config("RemotePort=65536"), kIPWorksBadValue, nullptr},
        {recorder.Config("RemotePort=21 "), kIPWorksBadValue, nullptr},
        {recorder.Config("StallSeconds=0"), kIPWorksBadValue, nullptr},
        {recorder.Config("StallSeconds"), kIPWorksBadValue, nullptr},
        {recorder.SetNumber(kIPWorksPassive, 2), kIPWorksBadValue, nullptr},
        {recorder.SetNumber(kIPWorksTransferMode, 1), kIPWorksBadValue, nullptr},
        // What would put a second command on the line, or another file into the path.
        {recorder.SetText(kIPWorksUser, "a\r\nDELE b"), kIPWorksBadValue, nullptr},
        {recorder.SetText(kIPWorksPassword, "a\nDELE b"), kIPWorksBadValue, nullptr},
        {recorder.SetText(kIPWorksRemoteFile, "a\r\nDELE b"), kIPWorksBadValue, nullptr},
        {recorder.SetText(kIPWorksRemoteFile, "../a"), kIPWorksBadValue, nullptr},
        {recorder.SetText(kIPWorksRemoteFile, ""), kIPWorksBadValue, nullptr},
        {recorder.SetText(kIPWorksRemoteHost, "host/other@third"), kIPWorksBadValue, nullptr},
        {recorder.SetText(kIPWorksRemoteHost, nullptr), kIPWorksBadValue, nullptr},
    };
    int row = 0;
    for (const auto& [result, expected, text] : rows)
    {
        SCOPED_TRACE(row++);
        EXPECT_EQ(expected, result);
    }
    EXPECT_THAT(recorder.LastError(), HasSubstr("1003 "));
    recorder.SetNumber(1, 0);
    EXPECT_EQ(rows[0].text, recorder.LastError());
    recorder.Config("CodePage=1252");
    EXPECT_EQ(rows[4].text, recorder.LastError());
    EXPECT_TRUE(recorder.events.empty());
}

TEST(Component, NullHandleIsAnsweredByEveryCall)
{
    EXPECT_EQ(nullptr, IPWorks_FTP_Create(nullptr, nullptr));
    EXPECT_EQ(kIPWorksBadHandle, IPWorks_FTP_Set(nullptr, kIPWorksPassive, 0, nullptr, 0));
    EXPECT_EQ(kIPWorksBadHandle, IPWorks_FTP_Do(nullptr, kIPWorksUpload, 0, nullptr, nullptr, 0));
    EXPECT_STREQ("1001 There is no component.", IPWorks_FTP_GetLastError(nullptr));
    EXPECT_EQ(0, IPWorks_FTP_Destroy(nullptr));
}
