// SPDX-License-Identifier: MIT
// The other process of a test. The first argument names the file for the answers, a line each; standard error
// goes to a file beside it. The others are steps, "verb:argument:argument", in which "%XX" stands for a byte.
#include "foundation/Kelvane.h"
#include "foundation/Locks.h"

#include <process.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <sstream>
#include <thread>

// The log must serve static objects, whichever comes first and last; the step "statics" stands for both.
struct EarlyAndLate
{
    EarlyAndLate() { Log("first"); }
    ~EarlyAndLate() { Log("last"); }
    static void Log(const char* text)
    {
        if (std::wcsstr(GetCommandLineW(), L"statics") != nullptr)
            LogNF(kLogProgress, ZTString(text), false);
    }
};
const EarlyAndLate gEarlyAndLate;

static std::FILE* gAnswers = nullptr;

static void Answer(const ZTString& text)
{
    std::fprintf(gAnswers, "%s\n", static_cast<const char*>(StrConverter(text)));
    std::fflush(gAnswers);
}

static std::string Decoded(const std::string& text)
{
    std::string decoded;
    for (std::size_t at = 0; at < text.size(); ++at)
    {
        decoded +=
            text[at] == '%' ? static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, 16)) : text[at];
        at += text[at] == '%' ? 2 : 0;
    }
    return decoded;
}

static ZTString Show(eConfigID id)
{
    if (GetConfigType(id) == eParamString)
        return GetConfigStr(id, nullptr);
    return std::to_wstring(GetConfigDWord(id, nullptr)).c_str();
}

static bool Set(eConfigID id, const ZTString& value)
{
    return GetConfigType(id) == eParamString
               ? SetConfigStr(id, value, true, nullptr)
               : SetConfigDWord(id, static_cast<DWORD>(wtodw(value)), true, nullptr);
}

static void LogMany(const ZTString& name, unsigned long count)
{
    for (unsigned long number = 0; number < count; ++number)
        _Log(kLogProgress, L"<{0:s}.{1:u}.{0:s}>", {name, number});
}

// Until the process is killed, at most a minute: two texts in turn, each a whole one.
static void SetForEver(eConfigID id, unsigned long length)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    for (bool odd = false; std::chrono::steady_clock::now() < end; odd = !odd)
        SetConfigStr(id, std::wstring(length, odd ? L'A' : L'B').c_str(), true, nullptr);
}

// Sets `ready` when it begins to wait for `event`.
static void Await(const ZTString& event, const ZTString& ready)
{
    const HANDLE awaited = CreateEventW(nullptr, TRUE, FALSE, event);
    SetEvent(CreateEventW(nullptr, TRUE, FALSE, ready));
    if (WaitForSingleObject(awaited, 60'000) != WAIT_OBJECT_0)
        std::exit(1);
}

static void Open(const ZTString& event, const ZTString&)
{
    CreateEventW(nullptr, TRUE, FALSE, event);
    Answer(std::to_wstring(GetLastError()).c_str());
}

static void LogInThread(const ZTString& name, const ZTString& text)
{
    std::jthread(
        [&]
        {
            ThreadInit(name);
            LogNF(kLogProgress, text, false);
        });
}

const std::map<std::string, void (*)(const ZTString&, const ZTString&)> kSteps = {
    {"init", [](auto&, auto&) { CriticalStartupInit(2, eConfigLogDirectory, nullptr); }},
    {"set", [](auto& key, auto& value) { Answer(Set(GetConfigID(key, true), value) ? L"true" : L"false"); }},
    {"get", [](auto& name, auto&) { Answer(Show(GetConfigID(name, true))); }},
    {"reset", [](auto& name, auto&) { ResetConfigVal(GetConfigID(name, true)); }},
    {"forever", [](auto& name, auto& length) { SetForEver(GetConfigID(name, true), wtodw(length)); }},
    {"log", [](auto& level, auto& text) { LogNF(static_cast<unsigned char>(wtodw(level)), text, false); }},
    {"many", [](auto& name, auto& count) { LogMany(name, wtodw(count)); }},
    {"thread", LogInThread},
    {"shell",
     [](auto& line, auto&) { std::system(StrConverter(line)) == 0 ? void() : Answer(L"failed: " + line); }},
    {"directory", [](auto&, auto&) { Answer(GetLogDirectory()); }},
    {"wait", [](auto& label, auto&) { RecordLockWait(label, 25); }},
    {"listen", [](auto&, auto&) { _beginthread(GUIListenForShutdown, 0, nullptr); }},
    {"shutdown", [](auto& reason, auto&) { SignalShutdown(reason); }},
    {"open", Open},
    {"await", Await},
    {"statics", [](auto&, auto&) {}},
};

static void Do(const std::string& step)
{
    std::istringstream rest(step);
    std::string verb, first, second;
    for (std::string* word : {&verb, &first, &second})
        std::getline(rest, *word, ':');
    kSteps.at(verb)(Decoded(first).c_str(), Decoded(second).c_str());
}

int main(int count, char** arguments)
{
    gAnswers = std::fopen(arguments[1], "wb");
    if (std::freopen((std::string(arguments[1]) + ".errors").c_str(), "wb", stderr) == nullptr)
        return 2;
    for (int index = 2; index < count; ++index)
        Do(arguments[index]);
    std::fclose(gAnswers);
    return 0;
}
