// SPDX-License-Identifier: MIT
// Explicit TLS: used when the server offers it, with the owner's word on the certificate.
#include "tests/ipworks/Recorder.h"
#include "tests/support/ScriptedFtpServer.h"
#include "tests/support/TlsStream.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

FtpScript Secured(const TlsServer& tls)
{
    FtpScript script;
    script.secure = [&tls](std::unique_ptr<TcpStream> plain) { return tls.Accept(std::move(plain)); };
    return script;
}

} // namespace

TEST(Security, BothConnectionsAreEncryptedAndTheCertificateIsAskedAboutOnce)
{
    const std::string content = TestBytes(3000000);
    const TemporaryFile file(content);
    const TlsServer tls("127.0.0.1", 10);
    ScriptedFtpServer server(Secured(tls));
    Recorder recorder(server.Port());
    recorder.SetLocalFile(file.Path());
    EXPECT_EQ(0, recorder.Upload()) << recorder.LastError();
    EXPECT_TRUE(content == server.Uploaded());
    EXPECT_THAT(server.Commands(), testing::Contains("PROT P"));
    EXPECT_THAT(recorder.events, testing::Contains("status 3 The connection is encrypted"));
    ASSERT_EQ(1U, recorder.Of("approve").size());
    EXPECT_EQ(tls.Certificate(), recorder.certificate);
    EXPECT_EQ("CN = 127.0.0.1", recorder.subject);
    EXPECT_EQ("CN = 127.0.0.1", recorder.issuer);
    EXPECT_THAT(recorder.Of("approve")[0], HasSubstr("self-signed certificate"));
}

// Some libcurl releases would send the file in plain text here.
TEST(Security, DirectModeIsEncryptedOrRefused)
{
    const std::string content = TestBytes(3000000);
    const TemporaryFile file(content);
    const TlsServer tls("127.0.0.1", 10);
    ScriptedFtpServer server(Secured(tls));
    Recorder recorder(server.Port());
    recorder.SetLocalFile(file.Path());
    recorder.SetNumber(kIPWorksPassive, 0);
    const int result = recorder.Upload();
    if (result == 0)
    {
        EXPECT_TRUE(content == server.Uploaded());
        return;
    }
    EXPECT_EQ(kIPWorksSecurityFailed, result) << recorder.LastError();
    EXPECT_EQ("", server.Uploaded());
    EXPECT_TRUE(recorder.progress.empty());
}

TEST(Security, CertificateThatIsNotApprovedEndsTheUploadBeforeTheLogin)
{
    const TemporaryFile file("content");
    const TlsServer tls("elsewhere.example", -1);
    ScriptedFtpServer server(Secured(tls));
    Recorder recorder(server.Port());
    recorder.SetLocalFile(file.Path());
    recorder.approves = false;
    EXPECT_EQ(kIPWorksSecurityFailed, recorder.Upload());
    EXPECT_EQ("1007 The server's certificate was not approved.", recorder.LastError());
    EXPECT_THAT(server.Commands(), ElementsAre("AUTH TLS"));
    ASSERT_EQ(1U, recorder.Of("approve").size());
    EXPECT_THAT(recorder.Of("approve")[0], HasSubstr("it is not for 127.0.0.1"));
}

TEST(Security, ExpiredCertificateGoesThroughWhenApproved)
{
    const TemporaryFile file("content");
    const TlsServer tls("127.0.0.1", -1);
    ScriptedFtpServer server(Secured(tls));
    Recorder recorder(server.Port());
    recorder.SetLocalFile(file.Path());
    EXPECT_EQ(0, recorder.Upload()) << recorder.LastError();
    EXPECT_EQ("content", server.Uploaded());
}

TEST(Security, HandshakeThatFailsEndsTheUploadInsteadOfGoingOnInPlainText)
{
    const TemporaryFile file("content");
    FtpScript script;
    script.secure = [](std::unique_ptr<TcpStream> plain) -> std::unique_ptr<Stream>
    {
        char hello[4096];
        while (plain->Receive(hello, sizeof hello) < 0)
        {
        }
        plain->Send("this is no handshake\r\n");
        return nullptr;
    };
    ScriptedFtpServer server(script);
    Recorder recorder(server.Port());
    recorder.SetLocalFile(file.Path());
    EXPECT_EQ(kIPWorksSecurityFailed, recorder.Upload());
    EXPECT_THAT(server.Commands(), ElementsAre("AUTH TLS"));
}

// The library writes to a connection that is gone: the signal must not end the process.
TEST(Security, EncryptedDataConnectionThatBreaksIsAnErrorLikeAnyOther)
{
    const TemporaryFile file(TestBytes(30000000));
    const TlsServer tls("127.0.0.1", 10);
    FtpScript script = Secured(tls);
    script.breakAt = 4000000;
    script.farewell = "426 Broken.\r\n";
    ScriptedFtpServer server(script);
    Recorder recorder(server.Port());
    recorder.SetLocalFile(file.Path());
    EXPECT_NE(0, recorder.Upload());
    EXPECT_GT(recorder.progress.back().bytes, 0);
}
