// SPDX-License-Identifier: MIT
#include "tests/ipworks/Recorder.h"

#include <algorithm>

namespace
{

int Number(void* param)
{
    return static_cast<int>(reinterpret_cast<std::intptr_t>(param));
}

std::string Text(void* param)
{
    return static_cast<const char*>(param);
}

void* Value(int number)
{
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(number));
}

} // namespace

Recorder::Recorder(FtpScript script, const std::string& content)
    : server(std::move(script)), mHandle(IPWorks_FTP_Create(&Recorder::OnEvent, this))
{
    WriteFile(File(), content);
    Config("CodePage=65001");
    Config("RemotePort=" + std::to_string(server.Port()));
    SetText(kIPWorksUser, "zt-ftp");
    SetText(kIPWorksPassword, kTestPassword);
    SetText(kIPWorksRemoteHost, "127.0.0.1");
    SetText(kIPWorksRemoteFile, "archive.zip");
    SetLocalFile(File());
}

int Recorder::Config(const std::string& setting)
{
    return Do(kIPWorksConfig, setting.c_str());
}

int Recorder::Do(int method, const char* parameter)
{
    void* params[] = {const_cast<char*>(parameter), nullptr};
    int lengths[] = {0};
    return IPWorks_FTP_Do(mHandle, method, parameter == nullptr ? 0 : 1, params, lengths, 0);
}

int Recorder::SetText(int property, const char* text)
{
    return IPWorks_FTP_Set(mHandle, property, 0, const_cast<char*>(text), 0);
}

int Recorder::SetNumber(int property, int number)
{
    return IPWorks_FTP_Set(mHandle, property, 0, Value(number), 0);
}

int Recorder::SetLocalFile(const std::filesystem::path& path)
{
    std::wstring wide = path.wstring();
    return IPWorks_FTP_Set(mHandle, kIPWorksLocalFile, 0, wide.data(), 0);
}

std::vector<std::string> Recorder::Of(const std::string& kind) const
{
    std::vector<std::string> found;
    std::copy_if(events.begin(), events.end(), std::back_inserter(found),
                 [&kind](const std::string& event)
                 { return event.compare(0, kind.size() + 1, kind + " ") == 0; });
    return found;
}

int Recorder::OnEvent(void* object, int eventId, int paramCount, void* params[], int lengths[])
{
    Recorder& recorder = *static_cast<Recorder*>(object);
    const auto note = [&recorder](const std::string& line) { recorder.events.push_back(line); };
    switch (eventId)
    {
    case kIPWorksStatus:
        note("status " + std::to_string(Number(params[1])) + " " + Text(params[2]));
        break;
    case kIPWorksFailure:
        note("error " + std::to_string(Number(params[0])) + " " + Text(params[1]));
        break;
    case kIPWorksDialogue:
        note((Number(params[0]) == 0 ? "> " : "< ") + Text(params[1]));
        break;
    case kIPWorksApprove:
        note("approve " + Text(params[3]));
        recorder.certificate.assign(static_cast<const char*>(params[0]),
                                    static_cast<std::size_t>(lengths[0]));
        recorder.subject = Text(params[1]);
        recorder.issuer = Text(params[2]);
        params[4] = Value(recorder.approves ? 1 : 0);
        break;
    case kIPWorksStarted:
        note("started " + Text(params[0]));
        break;
    case kIPWorksEnded:
        note("ended " + std::to_string(Number(params[0])));
        break;
    case kIPWorksProgress:
        recorder.progress.push_back(
            {std::chrono::steady_clock::now(), *static_cast<std::int64_t*>(params[1]), Number(params[2])});
        break;
    default:
        note("unknown event " + std::to_string(eventId) + " of " + std::to_string(paramCount));
    }
    return 0;
}
