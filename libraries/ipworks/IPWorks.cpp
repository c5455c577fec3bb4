// SPDX-License-Identifier: MIT
#include "libraries/ipworks/IPWorks.h"

#include "libraries/ipworks/HarmlessText.h"
#include "libraries/ipworks/LocalFile.h"
#include "libraries/ipworks/Upload.h"

#include <algorithm>
#include <charconv>
#include <new>

namespace
{

constexpr int kBinaryMode = 2;
constexpr int kUtf8CodePage = 65001;
constexpr int kHighestPort = 65535;
constexpr int kLongestStall = 86400;

struct Component
{
    IPWorksEventSink sink;
    void* object;
    UploadJob job;
    std::string lastError;
};

int Fail(Component& component, int code, std::string_view text)
{
    component.lastError = MakeHarmless(text, component.job.password);
    // A server's answer begins with its number.
    if (code >= kIPWorksBadHandle)
        component.lastError = std::to_string(code) + " " + component.lastError;
    return code;
}

// A text that goes to the server within one command line.
bool FitsOneLine(std::string_view text)
{
    return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

bool IsHostName(std::string_view text)
{
    return !text.empty() &&
           std::all_of(
               text.begin(), text.end(),
               [](char c)
               {
                   return static_cast<unsigned char>(c) > ' ' &&
                          std::string_view("/?#@%\\\"<>^`{|}\x7F").find(c) == std::string_view::npos;
               });
}

bool IsBareFileName(std::string_view text)
{
    return !text.empty() && text != "." && text != ".." && text.find('/') == std::string_view::npos &&
           FitsOneLine(text);
}

int SetText(Component& component, int property, std::string_view text)
{
    UploadJob& job = component.job;
    switch (property)
    {
    case kIPWorksUser:
        if (!FitsOneLine(text))
            return Fail(component, kIPWorksBadValue, "A user name is one line.");
        job.user = text;
        return kIPWorksOk;
    case kIPWorksPassword:
        if (!FitsOneLine(text))
            return Fail(component, kIPWorksBadValue, "A password is one line.");
        job.password = text;
        return kIPWorksOk;
    case kIPWorksRemoteHost:
        if (!IsHostName(text))
            return Fail(component, kIPWorksBadValue, "The remote host is not a host name.");
        job.host = text;
        return kIPWorksOk;
    default:
        if (!IsBareFileName(text))
            return Fail(component, kIPWorksBadValue, "The remote file is not a bare file name.");
        job.remoteFile = text;
        return kIPWorksOk;
    }
}

bool ReadNumber(std::string_view text, int highest, int& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number >= 1 && number <= highest;
}

int Configure(Component& component, std::string_view setting)
{
    const std::size_t equals = std::min(setting.find('='), setting.size());
    const std::string_view name = setting.substr(0, equals);
    int number = 0;
    const bool valid =
        ReadNumber(setting.substr(std::min(equals + 1, setting.size())), kLongestStall, number);
    if (name == "CodePage" && valid && number == kUtf8CodePage)
        return kIPWorksOk;
    if (name == "RemotePort" && valid && number <= kHighestPort)
    {
        component.job.port = number;
        return kIPWorksOk;
    }
    if (name == "StallSeconds" && valid)
    {
        component.job.stallLimit = std::chrono::seconds(number);
        return kIPWorksOk;
    }
    if (name == "CodePage" || name == "RemotePort" || name == "StallSeconds")
        return Fail(component, kIPWorksBadValue, "Bad value in the configuration: " + std::string(setting));
    return Fail(component, kIPWorksUnknownId, "Unknown configuration: " + std::string(setting));
}

int Upload(Component& component)
{
    const UploadJob& job = component.job;
    if (job.host.empty() || job.remoteFile.empty())
        return Fail(component, kIPWorksBadValue, "The remote host or the remote file is not set.");

    UploadEvents events(component.sink, component.object, job);
    events.Started();
    LocalFile file;
    UploadResult result;
    std::string problem;
    if (file.Open(job.localFile, problem))
        result = RunUpload(job, file, events);
    else
        result = {kIPWorksLocalFileFailed, "Cannot open the local file: " + problem};

    if (result.code != kIPWorksOk)
    {
        Fail(component, result.code, result.text);
        events.Failure({result.code, component.lastError});
    }
    events.Ended(result.code);
    return result.code;
}

} // namespace

void* IPWorks_FTP_Create(IPWorksEventSink sink, void* object)
{
    if (sink == nullptr)
        return nullptr;
    return new (std::nothrow) Component{sink, object, {}, {}};
}

int IPWorks_FTP_Set(void* handle, int property, int /*index*/, void* value, int /*length*/)
{
    if (handle == nullptr)
        return kIPWorksBadHandle;
    Component& component = *static_cast<Component*>(handle);
    const auto number = reinterpret_cast<std::intptr_t>(value);
    switch (property)
    {
    case kIPWorksPassive:
        if (number != 0 && number != 1)
            return Fail(component, kIPWorksBadValue, "Passive mode is 1 or 0.");
        component.job.passive = number == 1;
        return kIPWorksOk;
    case kIPWorksTransferMode:
        if (number != kBinaryMode)
            return Fail(component, kIPWorksBadValue, "The transfer mode can only be 2, binary.");
        return kIPWorksOk;
    case kIPWorksUser:
    case kIPWorksPassword:
    case kIPWorksRemoteHost:
    case kIPWorksRemoteFile:
        return SetText(component, property, value == nullptr ? "" : static_cast<const char*>(value));
    case kIPWorksLocalFile:
        component.job.localFile = value == nullptr ? L"" : static_cast<const wchar_t*>(value);
        return kIPWorksOk;
    default:
        return Fail(component, kIPWorksUnknownId, "Unknown property: " + std::to_string(property));
    }
}

int IPWorks_FTP_Do(void* handle, int method, int paramCount, void* params[], int /*lengths*/[],
                   int /*reserved*/)
{
    if (handle == nullptr)
        return kIPWorksBadHandle;
    Component& component = *static_cast<Component*>(handle);
    switch (method)
    {
    case kIPWorksConfig:
        if (paramCount != 1 || params[0] == nullptr)
            return Fail(component, kIPWorksBadValue, "A configuration is one text.");
        return Configure(component, static_cast<const char*>(params[0]));
    case kIPWorksUpload:
        return Upload(component);
    default:
        return Fail(component, kIPWorksUnknownId, "Unknown method: " + std::to_string(method));
    }
}

const char* IPWorks_FTP_GetLastError(void* handle)
{
    return handle == nullptr ? "1001 There is no component."
                             : static_cast<Component*>(handle)->lastError.c_str();
}

int IPWorks_FTP_Destroy(void* handle)
{
    delete static_cast<Component*>(handle);
    return kIPWorksOk;
}
