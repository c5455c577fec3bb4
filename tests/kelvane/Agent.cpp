// SPDX-License-Identifier: MIT
// Calls the library step by step, as its arguments say, in the folder it lies in. The first argument names
// the file for the answers, a line each; standard error goes to a file beside it. A step is
// "verb:argument:argument", a "%XX" in it stands for a byte, so that any text can be handed over.
#include "foundation/Kelvane.h"
#include "foundation/Locks.h"

#include <process.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace
{

// The log must serve static objects, whichever comes first and last.
struct EarlyAndLate
{
    EarlyAndLate() { Log("first"); }
    ~EarlyAndLate() { Log("last"); }
    static void Log(const char* text)
    {
        if (std::getenv("TAVO_LOG_STATICS") != nullptr)
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
    for (std::size_t at = 0; at <= step.size();)
    {
        const std::size_t end = std::min(step.find(':', at), step.size());
        words.emplace_back(Decoded(step.substr(at, end - at)).c_str());
        at = end + 1;
    }
    words.resize(4);
    return words;
}

ZTString Show(eConfigID id)
{
    if (GetConfigType(id) == eParamString)
        return GetConfigStr(id, nullptr);
    ZTString number;
    number.Format(L"{0:u}", GetConfigDWord(id, nullptr));
    return number;
}

bool Set(eConfigID id, const ZTString& value, bool save)
{
    return GetConfigType(id) == eParamString
               ? SetConfigStr(id, value, save, nullptr)
               : SetConfigDWord(id, static_cast<DWORD>(wtodw(value)), save, nullptr);
}

void LogMany(const ZTString& name, unsigned long count)
{
    for (unsigned long number = 0; number < count; ++number)
        _Log(kLogProgress, L"<{0:s}.{1:u}.{0:s}>", {name, number});
}

// Until the process is killed: two texts in turn, each a whole one.
void SetForEver(eConfigID id, unsigned long length)
{
    for (bool odd = false;; odd = !odd)
        SetConfigStr(id, std::wstring(length, odd ? L'A' : L'B').c_str(), true, nullptr);
}

void Do(const std::string& step)
{
    const std::vector<ZTString> words = Words(step);
    const ZTString& verb = words[0];
    const eConfigID id = GetConfigID(words[1], true);
    if (verb == L"init")
        CriticalStartupInit(2, eConfigLogDirectory, nullptr);
    else if (verb == L"set" || verb == L"try")
        Answer(Set(id, words[2], verb == L"set") ? L"true" : L"false");
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
                LogNF(kLogProgress, words[2], true);
            })
            .join();
    else if (verb == L"module")
        LogModuleLoaded(nullptr, true);
    else if (verb == L"directory")
        Answer(GetLogDirectory());
    else if (verb == L"wait")
        RecordLockWait(words[1], 25);
    else if (verb == L"listen")
        _beginthread(GUIListenForShutdown, 0, nullptr);
    else if (verb == L"shutdown")
        SignalShutdown(words[1]);
    else if (verb == L"number")
        Answer(FormatFloatingPointNum(std::stod(words[1].GetString()), words[2] == L"grouped",
                                      words[3].IsEmpty() ? -1 : static_cast<int>(wtodw(words[3]))));
    else if (verb == L"year")
    {
        int dates[4];
        GetTimeZoneTransitionDates(static_cast<int>(wtodw(words[1])), dates[0], dates[1], dates[2], dates[3]);
        ZTString text;
        text.Format(L"{0:02d}-{1:02d} {2:02d}-{3:02d}", dates[0], dates[1], dates[2], dates[3]);
        Answer(text);
    }
    else
        Answer(L"unknown step " + verb);
}

} // namespace

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
