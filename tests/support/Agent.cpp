// SPDX-License-Identifier: MIT
// The other process of a test. It does one step after the other, as its arguments say. The first argument
// names the file for the answers, a line each; standard error goes to a file beside it. A step is
// "verb:argument:argument", a "%XX" in it stands for a byte, so that any text can be handed over. After
// "arguments" there are no steps: they are answered as they came.
#include "foundation/Kelvane.h"
#include "foundation/Locks.h"

#include <process.h>

#include <chrono>
#include <cstdio>
#include <cwchar>
#include <sstream>
#include <thread>

namespace
{

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

std::FILE* gAnswers = nullptr;

void Answer(const ZTString& text)
{
    std::fprintf(gAnswers, "%s\n", static_cast<const char*>(StrConverter(text)));
    std::fflush(gAnswers);
}

std::string Decoded(const std::string& text)
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

std::vector<ZTString> Words(const std::string& step)
{
    std::vector<ZTString> words;
    std::istringstream rest(step);
    for (std::string word; std::getline(rest, word, ':');)
        words.emplace_back(Decoded(word).c_str());
    words.resize(4);
    return words;
}

ZTString Show(eConfigID id)
{
    if (GetConfigType(id) == eParamString)
        return GetConfigStr(id, nullptr);
    return std::to_wstring(GetConfigDWord(id, nullptr)).c_str();
}

bool Set(eConfigID id, const ZTString& value)
{
    return GetConfigType(id) == eParamString
               ? SetConfigStr(id, value, true, nullptr)
               : SetConfigDWord(id, static_cast<DWORD>(wtodw(value)), true, nullptr);
}

void LogMany(const ZTString& name, unsigned long count)
{
    for (unsigned long number = 0; number < count; ++number)
        _Log(kLogProgress, L"<{0:s}.{1:u}.{0:s}>", {name, number});
}

// Until the process is killed, at most a minute: two texts in turn, each a whole one.
void SetForEver(eConfigID id, unsigned long length)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    for (bool odd = false; std::chrono::steady_clock::now() < end; odd = !odd)
        SetConfigStr(id, std::wstring(length, odd ? L'A' : L'B').c_str(), true, nullptr);
}

void Await(const wchar_t* event, const wchar_t* ready)
{
    const HANDLE awaited = CreateEventW(nullptr, TRUE, FALSE, event);
    SetEvent(CreateEventW(nullptr, TRUE, FALSE, ready));
    if (WaitForSingleObject(awaited, 60'000) != WAIT_OBJECT_0)
        std::exit(1);
}

void Do(const std::string& step)
{
    const std::vector<ZTString> words = Words(step);
    const ZTString& verb = words[0];
    const eConfigID id = GetConfigID(words[1], true);
    if (verb == L"init")
        CriticalStartupInit(2, eConfigLogDirectory, nullptr);
    else if (verb == L"set")
        Answer(Set(id, words[2]) ? L"true" : L"false");
    else if (verb == L"get")
        Answer(Show(id));
    else if (verb == L"reset")
        ResetConfigVal(id);
    else if (verb == L"forever")
        SetForEver(id, wtodw(words[2]));
    else if (verb == L"log")
        LogNF(static_cast<unsigned char>(wtodw(words[1])), words[2], false);
    else if (verb == L"many")
        LogMany(words[1], wtodw(words[2]));
    else if (verb == L"thread")
        std::thread(
            [&words]
            {
                ThreadInit(words[1]);
                LogNF(kLogProgress, words[2], false);
            })
            .join();
    else if (verb == L"shell" && std::system(StrConverter(words[1])) != 0)
        Answer(L"failed: " + words[1]);
    else if (verb == L"directory")
        Answer(GetLogDirectory());
    else if (verb == L"wait")
        RecordLockWait(words[1], 25);
    else if (verb == L"listen")
        _beginthread(GUIListenForShutdown, 0, nullptr);
    else if (verb == L"shutdown")
        SignalShutdown(words[1]);
    else if (verb == L"open") // answers with the last error
    {
        CreateEventW(nullptr, TRUE, FALSE, words[1]);
        Answer(std::to_wstring(GetLastError()).c_str());
    }
    else if (verb == L"await") // sets the second event when it begins to wait for the first
        Await(words[1], words[2]);
    else if (verb == L"exit")
        std::exit(static_cast<int>(wtodw(words[1])));
    else if (verb != L"statics" && verb != L"shell")
        Answer(L"unknown step " + verb);
}

} // namespace

int main(int count, char** arguments)
{
    gAnswers = std::fopen(arguments[1], "wb");
    if (std::freopen((std::string(arguments[1]) + ".errors").c_str(), "wb", stderr) == nullptr)
        return 2;
    const bool answersArguments = count > 2 && std::string_view(arguments[2]) == "arguments";
    for (int index = answersArguments ? 3 : 2; index < count; ++index)
        answersArguments ? Answer(arguments[index]) : Do(arguments[index]);
    std::fclose(gAnswers);
    return 0;
}
