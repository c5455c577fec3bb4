// SPDX-License-Identifier: MIT
// The FTP client of a shipment: status, errors, the dialogue and progress become console lines, and every
// certificate is accepted.
#pragma once

#include "shipment/Ftp.h"

class ZTFTP : public FTP
{
public:
    int OnStatusText(FTPStatusEvent* event) override;
    int OnErrorText(FTPErrorEvent* event) override;
    int OnTraceText(FTPTraceEvent* event) override;
    int OnApproval(FTPApprovalEvent* event) override;
    int OnProgress(FTPProgressEvent* event) override;

    std::int64_t bytesSent = 0; // byte count of the latest progress event
};

// The percent figure of the latest progress line; upload thread only, never set back.
extern int gLastFTPPercent;
