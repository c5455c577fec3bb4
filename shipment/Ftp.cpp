// SPDX-License-Identifier: MIT
#include "shipment/Ftp.h"

#include "libraries/ipworks/IPWorks.h"

namespace
{

// The component that is ours raises neither.
constexpr int kEventWithoutName2 = 2;
constexpr int kEventWithoutName3 = 3;

const char* Text(const void* param)
{
    return static_cast<const char*>(param);
}

int Number(const void* param)
{
    return static_cast<int>(reinterpret_cast<std::intptr_t>(param));
}

std::int64_t Number64(const void* param)
{
    return *static_cast<const std::int64_t*>(param);
}

const void* AsValue(int number)
{
    return reinterpret_cast<const void*>(static_cast<std::intptr_t>(number));
}

} // namespace

FTP::FTP() : handle(IPWorks_FTP_Create(&FTPEventSink, this))
{
    Config("CodePage=65001");
}

FTP::~FTP()
{
    IPWorks_FTP_Destroy(handle);
}

void FTP::Config(const char* setting)
{
    void* params[] = {const_cast<char*>(setting), nullptr};
    int lengths[] = {0};
    IPWorks_FTP_Do(handle, kIPWorksConfig, 1, params, lengths, 0);
}

int FTP::Upload()
{
    void* params[] = {nullptr};
    int lengths[] = {0};
    return IPWorks_FTP_Do(handle, kIPWorksUpload, 0, params, lengths, 0);
}

int FTP::Set(int property, const void* value)
{
    return IPWorks_FTP_Set(handle, property, 0, const_cast<void*>(value), 0);
}

int FTP::SetUser(const char* user)
{
    return Set(kIPWorksUser, user);
}

int FTP::SetPassword(const char* password)
{
    return Set(kIPWorksPassword, password);
}

int FTP::SetRemoteHost(const char* host)
{
    return Set(kIPWorksRemoteHost, host);
}

int FTP::SetRemoteFile(const char* name)
{
    return Set(kIPWorksRemoteFile, name);
}

int FTP::SetPassive(int passive)
{
    return Set(kIPWorksPassive, AsValue(passive));
}

int FTP::SetTransferMode(int mode)
{
    return Set(kIPWorksTransferMode, AsValue(mode));
}

int FTP::SetLocalFile(const wchar_t* path)
{
    return Set(kIPWorksLocalFile, path);
}

const char* FTP::GetLastError()
{
    return IPWorks_FTP_GetLastError(handle);
}

int FTP::OnStatusText(FTPStatusEvent*)
{
    return 0;
}

int FTP::OnEvent2(FTPEvent2*)
{
    return 0;
}

int FTP::OnEvent3(FTPNumberEvent*)
{
    return 0;
}

int FTP::OnErrorText(FTPErrorEvent*)
{
    return 0;
}

int FTP::OnTraceText(FTPTraceEvent*)
{
    return 0;
}

int FTP::OnApproval(FTPApprovalEvent*)
{
    return 0;
}

int FTP::OnEvent7(FTPTextEvent*)
{
    return 0;
}

int FTP::OnEvent8(FTPNumberEvent*)
{
    return 0;
}

int FTP::OnProgress(FTPProgressEvent*)
{
    return 0;
}

int FTPEventSink(void* object, int eventId, int /*paramCount*/, void* params[], int lengths[])
{
    FTP& ftp = *static_cast<FTP*>(object);
    switch (eventId)
    {
    case kIPWorksStatus:
    {
        FTPStatusEvent event{Text(params[0]), Number(params[1]), Text(params[2]), 0};
        return ftp.OnStatusText(&event);
    }
    case kEventWithoutName2:
    {
        FTPEvent2 event{Text(params[0]),     Text(params[1]), Number(params[2]),
                        Number64(params[3]), Text(params[4]), 0};
        return ftp.OnEvent2(&event);
    }
    case kEventWithoutName3:
    {
        FTPNumberEvent event{Number(params[0]), 0};
        return ftp.OnEvent3(&event);
    }
    case kIPWorksFailure:
    {
        FTPErrorEvent event{Number(params[0]), Text(params[1]), 0};
        return ftp.OnErrorText(&event);
    }
    case kIPWorksDialogue:
    {
        FTPTraceEvent event{Number(params[0]), Text(params[1]), 0};
        return ftp.OnTraceText(&event);
    }
    case kIPWorksApprove:
    {
        FTPApprovalEvent event{
            params[0], lengths[0], Text(params[1]), Text(params[2]), Text(params[3]), Number(params[4]), 0};
        const int result = ftp.OnApproval(&event);
        params[4] = const_cast<void*>(AsValue(event.decision));
        return result;
    }
    case kIPWorksStarted:
    {
        FTPTextEvent event{Text(params[0]), 0};
        return ftp.OnEvent7(&event);
    }
    case kIPWorksEnded:
    {
        FTPNumberEvent event{Number(params[0]), 0};
        return ftp.OnEvent8(&event);
    }
    case kIPWorksProgress:
    {
        FTPProgressEvent event{Number(params[0]), Number64(params[1]), Number(params[2]),
                               Text(params[3]),   lengths[3],          0};
        return ftp.OnProgress(&event);
    }
    default:
        return 0;
    }
}
