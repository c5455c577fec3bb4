// SPDX-License-Identifier: MIT
#include "shipment/ZTFtp.h"

#include "shipment/FtpLine.h"

int gLastFTPPercent = 0;

namespace
{

void PostText(const wchar_t* format, const char* narrow)
{
    ZTString text;
    text = narrow;
    PostFtpLine(_StrFormat(format, {text}));
}

} // namespace

int ZTFTP::OnStatusText(FTPStatusEvent* event)
{
    PostText(L"FTP_LOG: {0}\r\n", event->description);
    return 0;
}

int ZTFTP::OnErrorText(FTPErrorEvent* event)
{
    PostText(L"FTP_LOG: Error - {0}\r\n", event->description);
    return 0;
}

int ZTFTP::OnTraceText(FTPTraceEvent* event)
{
    PostText(L"FTP_LOG: {0}\r\n", event->line);
    return 0;
}

int ZTFTP::OnApproval(FTPApprovalEvent* event)
{
    event->decision = 1;
    return 0;
}

int ZTFTP::OnProgress(FTPProgressEvent* event)
{
    bytesSent = event->bytes;
    if (event->percent == gLastFTPPercent)
        return 0;
    gLastFTPPercent = event->percent;
    PostFtpLine(_StrFormat(L"FTP_LOG: {0}% done, {1} sent\r\n", {event->percent, event->bytes}));
    return 0;
}
