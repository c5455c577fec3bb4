// SPDX-License-Identifier: MIT
// From the component's events to the console's lines. The component and the posting are played here: the one
// notes its calls by the numbers that its interface fixes, and follows a script. Linux only.
#include "console/TavoDlg.h"
#include "shipment/FtpUpload.h"
#include "shipment/ZTFtp.h"
#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>

using Sink = int (*)(void*, int, int, void**, int*);

struct Component
{
    Sink sink = nullptr;
    void* owner = nullptr;
    std::map<int, int> refusals{};               // property to code
    std::vector<std::function<int()>> uploads{}; // one for each attempt
    std::vector<std::string> calls{};

    std::vector<void*> Raise(int event, std::vector<void*> params) const
    {
        int lengths[5] = {};
        EXPECT_EQ(0, sink(owner, event, static_cast<int>(params.size()), params.data(), lengths));
        return params;
    }
    void Progress(int percent, std::int64_t bytes) const
    {
        Raise(9, {nullptr, &bytes, reinterpret_cast<void*>(std::intptr_t{percent}), const_cast<char*>("")});
    }
};

Component gComponent;
std::vector<std::string> gPosted;

static void* Text(const char* text)
{
    return const_cast<char*>(text);
}

BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    EXPECT_TRUE(window == gConsoleWnd && message == 0x402 && wParam == 0 && !gbFTPDone);
    auto* const text = reinterpret_cast<wchar_t*>(lParam);
    gPosted.push_back(fs::path(text).string());
    free(text);
    return TRUE;
}

extern "C"
{
    void* IPWorks_FTP_Create(Sink sink, void* owner)
    {
        gComponent.sink = sink;
        gComponent.owner = owner;
        return &gComponent;
    }

    int IPWorks_FTP_Set(void*, int property, int index, void* value, int length)
    {
        const bool isNumber = property == 24 || property == 41;
        const bool isWide = property == 10021;
        const std::string text = isNumber ? std::to_string(reinterpret_cast<std::intptr_t>(value))
                                 : isWide ? fs::path(static_cast<const wchar_t*>(value)).filename().string()
                                          : static_cast<const char*>(value);
        gComponent.calls.push_back("set " + std::to_string(property) + " " + std::to_string(index) + " " +
                                   text + " " + std::to_string(length));
        return gComponent.refusals.contains(property) ? gComponent.refusals[property] : 0;
    }

    int IPWorks_FTP_Do(void*, int method, int count, void* params[], int lengths[], int reserved)
    {
        gComponent.calls.push_back("do " + std::to_string(method) + " " + std::to_string(count) + " " +
                                   (params[0] == nullptr ? "" : static_cast<const char*>(params[0])) + " " +
                                   std::to_string(lengths[0]) + " " + std::to_string(reserved));
        if (method != 20)
            return 0;
        const std::function<int()> upload = gComponent.uploads.front();
        gComponent.uploads.erase(gComponent.uploads.begin());
        return upload();
    }

    const char* IPWorks_FTP_GetLastError(void*)
    {
        return "the last error";
    }

    int IPWorks_FTP_Destroy(void*)
    {
        gComponent.calls.push_back(gbFTPDone ? "destroy" : "destroy before the end");
        return 0;
    }
}

static std::vector<std::string> RunFtpProc(const fs::path& file)
{
    gPosted.clear();
    FTPProc(new FTPProcArgs{ZTString(file.wstring().c_str()), ZTString(L"remote.zip")});
    EXPECT_TRUE(gbFTPDone);
    return gPosted;
}

using Texts = std::vector<std::string>;

TEST(FTPProc, SetsSevenPropertiesUploadsOnceAndPostsALineForEachChangeOfThePercentFigure)
{
    const TestFolder folder;
    const fs::path file = folder.Path() / "local.zip";
    WriteFile(file, std::string(200, 'x'));
    const std::int64_t all = 200;
    gComponent = {.uploads = {[&]
                              {
                                  EXPECT_EQ("FTPProc\n", ReadFile("/proc/thread-self/comm"));
                                  gComponent.Raise(1, {Text("C"), nullptr, Text("status")});
                                  gComponent.Raise(5, {nullptr, Text("220 trace")});
                                  gComponent.Raise(7, {Text("started")});
                                  const auto answer = gComponent.Raise(6, std::vector<void*>(5));
                                  EXPECT_EQ(reinterpret_cast<void*>(1), answer[4]) << "approved";
                                  gComponent.Progress(0, 1);
                                  gComponent.Progress(50, 100);
                                  gComponent.Progress(50, 101);
                                  gComponent.Progress(40, 80);
                                  gComponent.Raise(4, {nullptr, Text("error")});
                                  gComponent.Progress(100, all);
                                  return 0;
                              }}};
    EXPECT_EQ((Texts{"FTP_LOG: status\r\n", "FTP_LOG: 220 trace\r\n", "FTP_LOG: 50% done, 100 sent\r\n",
                     "FTP_LOG: 40% done, 80 sent\r\n", "FTP_LOG: Error - error\r\n",
                     "FTP_LOG: 100% done, 200 sent\r\n", "FTP_LOG: Successfully sent logs to Support\r\n"}),
              RunFtpProc(file));
    EXPECT_EQ((Texts{"do 4 1 CodePage=65001 0 0", "set 42 0 zt-ftp 0", "set 25 0 Kesto-42 0",
                     "set 27 0 " TAVO_SUPPORT_HOST " 0", "set 24 0 1 0", "set 41 0 2 0",
                     "set 10021 0 local.zip 0", "set 26 0 remote.zip 0", "do 20 0  0 0", "destroy"}),
              gComponent.calls);
}

TEST(FTPProc, GoesOnAfterRefusedPropertiesAndTriesDirectModeWhenNothingWasSentWhateverTheResult)
{
    const TestFolder folder;
    const fs::path file = folder.Path() / "local.zip";
    WriteFile(file, "1234567");
    gLastFTPPercent = 40;
    gComponent = {.refusals = {{42, 1}, {25, 2}, {27, 3}, {24, -4}, {41, 5}, {10021, 6}, {26, 7}},
                  .uploads = {[] { return 0; },
                              [&]
                              {
                                  gComponent.Progress(40, 5); // the figure of the line before
                                  WriteFile(file, "123456789");
                                  return 9;
                              }}};
    EXPECT_EQ(
        (Texts{"[SetUser error: 1][SetPassword error: 2][SetRemoteHost error: 3][SetPassive error: -4]"
               "[SetTransferMode error: 5][SetLocalFile error: 6][SetRemoteFile error: 7]",
               "FTP_LOG: Passive upload failed - trying direct\r\n", "[SetPassive error: -4]",
               "FTP_LOG: Log FTP failed with: the last error\r\n", "FTP_LOG: ### File size: 9, Sent: 5\r\n",
               "FTP_LOG: ### File size changed.  Orig: 7, End: 9\r\n"}),
        RunFtpProc(file));
    EXPECT_EQ((Texts{"do 20 0  0 0", "set 24 0 0 0", "do 20 0  0 0", "destroy"}),
              Texts(gComponent.calls.end() - 4, gComponent.calls.end()));
}
