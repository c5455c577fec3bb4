// SPDX-License-Identifier: MIT
#include "shipment/FtpUpload.h"

#include "foundation/Kelvane.h"
#include "shipment/FtpLine.h"
#include "shipment/ZTFtp.h"

#include <memory>

std::atomic<bool> gbFTPDone{false};

namespace
{

constexpr const char* kUser = "zt-ftp";
constexpr const char* kPassword = "Kesto-42";
constexpr const char* kHost = TAVO_SUPPORT_HOST;
constexpr int kBinary = 2;

void NoteError(ZTString& errors, const wchar_t* format, int code)
{
    if (code != 0)
        errors += _StrFormat(format, {code});
}

void PostErrors(ZTString& errors)
{
    if (errors.IsEmpty())
        return;
    PostFtpLine(errors);
    errors.Empty();
}

void SetProperties(ZTFTP& client, const FTPProcArgs& args, ZTString& errors)
{
    NoteError(errors, L"[SetUser error: {0}]", client.SetUser(kUser));
    NoteError(errors, L"[SetPassword error: {0}]", client.SetPassword(kPassword));
    NoteError(errors, L"[SetRemoteHost error: {0}]", client.SetRemoteHost(kHost));
    NoteError(errors, L"[SetPassive error: {0}]", client.SetPassive(1));
    NoteError(errors, L"[SetTransferMode error: {0}]", client.SetTransferMode(kBinary));
    NoteError(errors, L"[SetLocalFile error: {0}]", client.SetLocalFile(args.localFile));
    NoteError(errors, L"[SetRemoteFile error: {0}]", client.SetRemoteFile(StrConverter(args.remoteFile)));
    PostErrors(errors);
}

// Gives the result of the last attempt.
int Upload(ZTFTP& client, ZTString& errors)
{
    const int result = client.Upload();
    if (client.bytesSent != 0)
        return result;
    PostFtpLine(L"FTP_LOG: Passive upload failed - trying direct\r\n");
    NoteError(errors, L"[SetPassive error: {0}]", client.SetPassive(0));
    PostErrors(errors);
    return client.Upload();
}

void ReportResult(ZTFTP& client, int result)
{
    if (result == 0)
    {
        PostFtpLine(L"FTP_LOG: Successfully sent logs to Support\r\n");
        return;
    }
    ZTString text;
    text = client.GetLastError();
    PostFtpLine(_StrFormat(L"FTP_LOG: Log FTP failed with: {0}\r\n", {text}));
}

void ReportSizes(std::int64_t before, std::int64_t after, std::int64_t sent)
{
    if (after > sent)
        PostFtpLine(_StrFormat(L"FTP_LOG: ### File size: {0}, Sent: {1}\r\n", {after, sent}));
    if (after != before)
        PostFtpLine(_StrFormat(L"FTP_LOG: ### File size changed.  Orig: {0}, End: {1}\r\n", {before, after}));
}

} // namespace

void FTPProc(void* args)
{
    ThreadInit(L"FTPProc");
    gbFTPDone = false;
    std::unique_ptr<FTPProcArgs> shipment(static_cast<FTPProcArgs*>(args));
    const auto before = static_cast<std::int64_t>(ZTGetFileSize(shipment->localFile));

    ZTString errors; // outlives the client
    ZTFTP client;
    SetProperties(client, *shipment, errors);
    const int result = Upload(client, errors);
    ReportResult(client, result);
    const auto after = static_cast<std::int64_t>(ZTGetFileSize(shipment->localFile));
    ReportSizes(before, after, client.bytesSent);

    shipment.reset();
    gbFTPDone = true;
}
