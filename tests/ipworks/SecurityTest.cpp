// SPDX-License-Identifier: MIT
// Explicit TLS: used when the server offers it, with the owner's word on the certificate.
#include "tests/ipworks/Recorder.h"
#include "tests/support/ProgramFolder.h"

using namespace testing;

constexpr const char* kHost = "127.0.0.1";
constexpr std::int64_t kMiddle = 4000000;

TEST(Security, BothConnectionsAreEncryptedAndTheCertificateIsAskedAboutOnce)
{
    const std::string content = RandomBytes(3000000);
    Recorder recorder({.certificate = kHost}, content);
    EXPECT_EQ(0, recorder.Upload()) << recorder.LastError();
    EXPECT_TRUE(content == recorder.server.Uploaded());
    EXPECT_THAT(recorder.server.Commands(), Contains("PROT P"));
    EXPECT_THAT(recorder.events,
                Contains("status 3 The connection is encrypted; the certificate does not prove the server "
                         "(self-signed certificate): CN = 127.0.0.1"));
    EXPECT_EQ(recorder.server.Certificate(), recorder.certificate);
    EXPECT_EQ("CN = 127.0.0.1", recorder.subject);
    EXPECT_EQ("CN = 127.0.0.1", recorder.issuer);
    EXPECT_THAT(recorder.Of("approve"), ElementsAre("approve self-signed certificate"));
}

TEST(Security, CertificateOfATrustedAuthorityProvesTheServer)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "the authorities of Windows are no file";
    const Variable authorities("SSL_CERT_FILE", TAVO_CERTIFICATES "127.0.0.1.pem");
    Recorder recorder({.certificate = kHost});
    for (const char* host : {kHost, "localhost"})
    {
        recorder.SetText(kIPWorksRemoteHost, host);
        EXPECT_EQ(0, recorder.UploadIn(1)) << recorder.LastError();
        EXPECT_THAT(recorder.events,
                    Contains("status 3 The connection is encrypted; the certificate proves the server: "
                             "CN = 127.0.0.1, issued by CN = 127.0.0.1"));
        EXPECT_THAT(recorder.Of("approve"), ElementsAre("approve "));
    }
}

TEST(Security, ServerThatAsksForNoLoginOrEncryptsTheDialogueOnlyIsCalledReadableInBothModes)
{
    const std::pair<FtpScript, std::vector<Matcher<std::string>>> rows[] = {
        {{.greeting = "230-In.\r\nB52 is taken.\r\n2x2 is four.\r\n230 Go on.\r\n"},
         {StartsWith("status 1 Connecting to 127.0.0.1:"), "status 2 Connected to 127.0.0.1",
          "status 4 Logged in as zt-ftp",
          "status 8 The server offers no encryption: password and file can be read on their way",
          "status 5 Sending archive.zip", "status 6 The server has received archive.zip",
          "status 7 Disconnected"}},
        {{.answers = {{"PASS", "232 In.\r\n"}, {"PROT", "536 Not here.\r\n"}}, .certificate = kHost},
         {HasSubstr(" Connecting "), HasSubstr(" Connected "),
          HasSubstr("status 3 The connection is encrypted; "), HasSubstr(" Logged in "),
          "status 8 The server encrypts the dialogue only: the file can be read on its way",
          HasSubstr(" Sending "), HasSubstr(" has received "), HasSubstr(" Disconnected")}}};
    for (const auto& [script, statuses] : rows)
    {
        Recorder recorder(script);
        for (const int passive : {1, 0})
        {
            EXPECT_EQ(0, recorder.UploadIn(passive)) << recorder.LastError();
            EXPECT_EQ("content", recorder.server.Uploaded());
            EXPECT_THAT(recorder.Of("status"), ElementsAreArray(statuses));
        }
    }
}

// Some libcurl releases would send the file in plain text here.
TEST(Security, DirectModeIsEncryptedOrRefused)
{
    const std::string content = RandomBytes(3000000);
    Recorder recorder({.certificate = kHost}, content);
    recorder.SetNumber(kIPWorksPassive, 0);
    const int result = recorder.Upload();
    EXPECT_EQ(recorder.LastError(),
              result == 0 ? "" : "1007 This libcurl cannot encrypt a data connection in direct mode.");
    EXPECT_TRUE(recorder.server.Uploaded() == (result == 0 ? content : ""));
    EXPECT_EQ(result != 0, recorder.progress.empty());
}

// Whoever connects first to the open port would get the file.
TEST(Security, DirectModeGivesNothingToAStranger)
{
    Recorder recorder({.directFrom = "127.0.0.2"});
    recorder.SetNumber(kIPWorksPassive, 0);
    EXPECT_EQ(1006, recorder.Upload());
    EXPECT_EQ("1006 A stranger opened the data connection.", recorder.LastError());
    EXPECT_EQ("", recorder.server.Uploaded());
}

TEST(Security, CertificateThatIsExpiredAndOfAnotherHostEndsTheUploadBeforeTheLoginUnlessApproved)
{
    Recorder recorder({.certificate = "elsewhere.example"});
    recorder.approves = false;
    EXPECT_EQ(1007, recorder.Upload());
    EXPECT_EQ("1007 The server's certificate was not approved.", recorder.LastError());
    EXPECT_THAT(recorder.server.Commands(), ElementsAre("AUTH TLS"));
    EXPECT_THAT(recorder.Of("approve"),
                ElementsAre("approve self-signed certificate; it is not for 127.0.0.1"));
    recorder.approves = true;
    EXPECT_EQ(0, recorder.Upload()) << recorder.LastError();
    EXPECT_EQ("content", recorder.server.Uploaded());
}

TEST(Security, HandshakeThatFailsEndsTheUploadInsteadOfGoingOnInPlainText)
{
    Recorder recorder({.certificate = "none"});
    for (const int passive : {1, 0})
    {
        recorder.SetNumber(kIPWorksPassive, passive);
        EXPECT_EQ(1007, recorder.Upload());
        EXPECT_THAT(recorder.LastError(), HasSubstr("wrong version number"));
    }
    EXPECT_THAT(recorder.server.Commands(), ElementsAre("AUTH TLS", "AUTH TLS"));
}

// The library writes to a connection that is gone: the signal must not end the process.
TEST(Security, EncryptedTransferThatBreaksBringsTheServersReason)
{
    for (const std::string atBreak : {"reset", "close", "stall"})
    {
        FtpScript script{.breakAt = kMiddle, .atBreak = atBreak, .certificate = kHost, .renewsKeys = true};
        (atBreak == "stall" ? script.breakAnswer : script.farewell) = "552 Quota.\r\n";
        Recorder recorder(script, std::string(30000000, 'x'));
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(552, recorder.Upload());
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(25));
        EXPECT_EQ("552 Quota.", recorder.LastError());
        EXPECT_GT(recorder.progress.back().bytes, 0);
    }
}
