// SPDX-License-Identifier: MIT
// What the component does when all goes well, and how it answers what it does not know.
#include "tests/ipworks/Recorder.h"
#include "tests/support/ProgramFolder.h"

using namespace testing;

TEST(Upload, PassiveBringsTheFileAndTellsOfEveryStep)
{
    constexpr std::int64_t kSize = 300000;
    const std::string content = RandomBytes(kSize);
    Recorder recorder({}, content);
    HoldForAMoment(recorder.File());
    const Variable proxy("ftp_proxy", "http://127.0.0.1:9"); // nobody asks it
    ASSERT_EQ(0, recorder.Upload()) << recorder.LastError();
    EXPECT_TRUE(content == recorder.server.Uploaded());
    EXPECT_EQ("archive.zip", recorder.server.UploadedName());
    EXPECT_EQ("", recorder.LastError());
    Recorder::Progress before{};
    for (const Recorder::Progress& event : recorder.progress)
    {
        EXPECT_GT(event.bytes, before.bytes);
        EXPECT_EQ(event.bytes * 100 / kSize, event.percent);
        if (event.bytes < kSize)
            EXPECT_GE(event.at - before.at, std::chrono::milliseconds(100));
        before = event;
    }
    EXPECT_EQ(kSize, before.bytes);

    EXPECT_EQ("started archive.zip", recorder.events.front());
    EXPECT_EQ("ended 0", recorder.events.back());
    EXPECT_THAT(recorder.Of("<"), Contains("< 226 Received."));
    EXPECT_THAT(recorder.server.Commands(),
                ElementsAre("AUTH TLS", "AUTH SSL", "USER zt-ftp", "PASS Kesto-42", "PWD", "OPTS UTF8 ON",
                            "EPSV", "TYPE I", "STOR archive.zip", "QUIT"));
    EXPECT_THAT(recorder.Of(">"), Contains("> PASS ****"));
}

TEST(Upload, GoesDirectAndByTheOldCommandsAndIgnoresAForeignAddress)
{
    const std::string content = RandomBytes(65537); // a byte more than libcurl takes at once
    const std::tuple<const char*, int, const char*> rows[] = {
        {"none", 0, "EPRT |1|127.0.0.1|"}, {"EPRT", 0, "PORT 127,0,0,1,"}, {"EPSV", 1, "PASV"}};
    for (const auto& [unknown, passive, command] : rows)
    {
        Recorder recorder({.answers = {{unknown, "500 What?\r\n"}},
                           .passiveAddress = "192,0,2,1",
                           .farewell = "250 Received.\r\n"},
                          content);
        EXPECT_EQ(0, recorder.UploadIn(passive)) << recorder.LastError();
        EXPECT_TRUE(content == recorder.server.Uploaded());
        EXPECT_THAT(recorder.server.Commands(), Contains(StartsWith(command)));
    }
}

TEST(Upload, ServerOfIPv6IsServedInBothModes)
{
    if (!HasIPv6())
        GTEST_SKIP() << "no address ::1";
    const std::string content = RandomBytes(100000);
    Recorder recorder({.address = "::1", .directFrom = "::1"}, content);
    recorder.SetText(kIPWorksRemoteHost, "::1");
    for (const auto& [passive, command] : {std::pair{1, "EPSV"}, {0, "EPRT |2|::1|"}})
    {
        EXPECT_EQ(0, recorder.UploadIn(passive)) << recorder.LastError();
        EXPECT_TRUE(content == recorder.server.Uploaded());
        EXPECT_THAT(recorder.server.Commands(), testing::Contains(HasSubstr(command)));
    }
}

TEST(Upload, OneComponentUploadsAgainUnderNamesThatArriveAsTheyAre)
{
    Recorder recorder;
    for (const char* name : {"archive.zip", "two  blanks.zip", "100%25.zip", "a#b?c;type=a.zip",
                             "\"quoted\".zip", "back\\slash.zip", "Лог.zip", "日志.zip", "😀.zip"})
    {
        recorder.SetText(kIPWorksRemoteFile, name);
        EXPECT_EQ(0, recorder.Upload()) << name << ": " << recorder.LastError();
        EXPECT_EQ(name, recorder.server.UploadedName());
    }
}

TEST(Upload, EmptyFileIsConfirmedAndReportsNoByte)
{
    Recorder recorder({}, "");
    EXPECT_EQ(0, recorder.Upload()) << recorder.LastError();
    ASSERT_EQ(1U, recorder.progress.size());
    EXPECT_EQ(0, recorder.progress[0].bytes);
    EXPECT_EQ(100, recorder.progress[0].percent);
}

TEST(Upload, FileThatIsMissingOrNotOursAloneFailsWithoutAConnection)
{
    Recorder recorder;
    const fs::path& folder = recorder.Directory();
    WriteFile(folder / "secret", "secret");
    fs::create_hard_link(folder / "secret", folder / "second");
    const std::string russian = "\xD0.*"; // in UTF-8
    const std::string missing = RunsOnWindows() ? russian : "No such file or directory";
    const std::string isFolder = RunsOnWindows() ? russian : "Is a directory";
    std::vector<std::pair<fs::path, std::string>> rows = {
        {folder / "missing", missing},
        {folder, isFolder},
        {folder / "second", "It has a second name elsewhere."}};
    if (!RunsOnWindows())
    {
        fs::create_symlink(recorder.File(), folder / "link");
        rows.insert(rows.end(),
                    {{folder / "link", "It is a link."}, {"/dev/null", "It is not a plain file."}});
        // Which only root can give away.
        if (std::system(("cd '" + folder.string() + "' && touch theirs && chown 1:1 theirs").c_str()) == 0)
            rows.emplace_back(folder / "theirs", "It belongs to another account.");
    }
    for (const auto& [path, problem] : rows)
    {
        recorder.SetLocalFile(path);
        EXPECT_EQ(1004, recorder.Upload());
        EXPECT_THAT(recorder.LastError(), MatchesRegex("1004 Cannot open the local file: " + problem));
    }
    EXPECT_TRUE(recorder.server.Commands().empty());
    EXPECT_THAT(recorder.Of("error"), SizeIs(rows.size()));
}

// The size at the start counts: what a writer adds meanwhile is not sent, what it takes away is not an error.
TEST(Upload, FileThatChangesMeanwhileComesToAnEnd)
{
    const std::string content = RandomBytes(800000);
    for (const std::size_t size : {900000U, 100000U})
    {
        // Time to change the file between its opening and the first byte.
        Recorder recorder({.inSingleBytes = true}, content);
        std::thread writer(
            [&]
            {
                while (recorder.server.Commands().empty())
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                fs::resize_file(recorder.File(), size);
            });
        EXPECT_EQ(0, recorder.Upload()) << recorder.LastError();
        writer.join();
        EXPECT_TRUE(content.substr(0, size) == recorder.server.Uploaded());
        EXPECT_EQ(100, recorder.progress.back().percent);
    }
}

TEST(Component, UnknownNumbersAndInjectedTextGiveACodeAndAText)
{
    Recorder recorder;
    const auto said = [&recorder](int result) { return std::to_string(result) + "|" + recorder.LastError(); };
    const std::pair<std::string, std::string> rows[] = {
        {said(recorder.SetNumber(1, 0)), "1002|1002 Unknown property: 1"},
        {said(recorder.SetNumber(kIPWorksPassive, 2)), "1003|1003 Passive mode is 1 or 0."},
        {said(recorder.SetNumber(41, 1)), "1003|1003 The transfer mode can only be 2, binary."},
        {said(recorder.Do(kIPWorksConfig)), "1003|1003 A configuration is one text."},
        {said(recorder.Do(1)), "1002|1002 Unknown method: 1"},
        {said(recorder.Config("Unknown=1")), "1002|1002 Unknown configuration: Unknown=1"},
        {said(recorder.Config("RemotePort=65536")),
         "1003|1003 Bad value in the configuration: RemotePort=65536"},
        {said(recorder.Config("StallSeconds=0")), "1003|1003 Bad value in the configuration: StallSeconds=0"},
        {said(recorder.Config("StallSeconds=86401")),
         "1003|1003 Bad value in the configuration: StallSeconds=86401"},
        // What would put a second command on the line, or another file into the path.
        {said(recorder.SetText(kIPWorksUser, "a\r\nDELE b")), "1003|1003 A user name is one line."},
        {said(recorder.SetText(kIPWorksPassword, "a\nDELE b")), "1003|1003 A password is one line."},
        {said(recorder.SetText(kIPWorksRemoteFile, "a\r\nDELE b")),
         "1003|1003 The remote file is not a bare file name."},
        {said(recorder.SetText(kIPWorksRemoteFile, "../a")),
         "1003|1003 The remote file is not a bare file name."},
        {said(recorder.SetText(kIPWorksRemoteHost, "host/other@third")),
         "1003|1003 The remote host is not a host name."},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(text, expected);
    for (const char* setting : {"StallSeconds=1", "StallSeconds=86400", "RemotePort=65535"})
        EXPECT_EQ(0, recorder.Config(setting)) << setting;
    EXPECT_TRUE(recorder.events.empty());
}

TEST(Component, NullHandleIsAnsweredByEveryCall)
{
    EXPECT_EQ(nullptr, IPWorks_FTP_Create(nullptr, nullptr));
    EXPECT_EQ(1001, IPWorks_FTP_Set(nullptr, 24, 0, nullptr, 0));
    EXPECT_EQ(1001, IPWorks_FTP_Do(nullptr, 20, 0, nullptr, nullptr, 0));
    EXPECT_STREQ("1001 There is no component.", IPWorks_FTP_GetLastError(nullptr));
    EXPECT_EQ(0, IPWorks_FTP_Destroy(nullptr));
    void* const fresh = IPWorks_FTP_Create([](void*, int, int, void**, int*) { return 0; }, nullptr);
    EXPECT_EQ(1003, IPWorks_FTP_Do(fresh, 20, 0, nullptr, nullptr, 0));
    EXPECT_STREQ("1003 The remote host or the remote file is not set.", IPWorks_FTP_GetLastError(fresh));
    EXPECT_EQ(0, IPWorks_FTP_Destroy(fresh));
}
