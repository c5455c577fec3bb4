// SPDX-License-Identifier: MIT
// The log is used by static objects before main and after its end: nothing here is ever destroyed.
#include "libraries/kelvane/Log.h"

#include "libraries/kelvane/Files.h"
#include "libraries/kelvane/Process.h"
#include "libraries/kelvane/Text.h"
#include "text/SafeToShow.h"
#include "text/Unicode.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <mutex>
#include <thread>

namespace kelvane
{
namespace
{

constexpr std::size_t kLongestThreadName = 64;
constexpr std::chrono::milliseconds kTimeForALine{50};

std::atomic<eConfigID> gDirectorySetting{eConfigLogDirectory};
std::atomic<bool> gbTroubleTold{false};

// Plain memory, which outlives the thread's objects with destructors.
thread_local std::array<char, kLongestThreadName + 1> tThreadName{};

// The file, and those before it: Tavo.log, Tavo.1.log, Tavo.2.log ...
std::filesystem::path LogFile(const std::filesystem::path& directory, DWORD age)
{
    return directory / (age == 0 ? "Tavo.log" : "Tavo." + std::to_string(age) + ".log");
}

// A text is one line in the log, whatever it holds; nor can it command a terminal or mislead a reader's eye.
std::string Escaped(std::wstring_view text)
{
    std::string escaped;
    escaped.reserve(text.size());
    while (!text.empty())
    {
        const std::wstring_view before = text;
        const char32_t point = text::TakePoint(text);
        std::array<char, 12> form{};
        if (text::IsSafeToShow(point))
            escaped += Narrow(before.substr(0, before.size() - text.size()));
        else if (point == '\n' || point == '\r' || point == '\t')
            escaped.append({'\\', point == '\n' ? 'n' : point == '\r' ? 'r' : 't'});
        else
            escaped.append(form.data(),
                           static_cast<std::size_t>(std::snprintf(form.data(), form.size(), "\\u%04X",
                                                                  static_cast<unsigned>(point))));
    }
    return escaped;
}

std::string LineOf(unsigned char severity, std::wstring_view text)
{
    const char* const kind = severity == kLogFailure ? "failure" : "progress";
    std::string line =
        LocalMoment() + " [" + std::to_string(ProcessId()) + ":" + std::to_string(GetCurrentThreadId());
    if (tThreadName[0] != '\0')
        line.append(" ").append(tThreadName.data());
    return line + "] " + kind + ": " + Escaped(text) + "\n";
}

void TellTrouble(const ZTString& problem)
{
    if (!gbTroubleTold.exchange(true))
        std::fprintf(stderr, "Tavo: the log in %s cannot be written: %s\n",
                     Narrow(GetLogDirectory().AsView()).c_str(), Narrow(problem.AsView()).c_str());
}

// Makes room for a new log file. Whoever comes second finds the work done, and somebody who is at it is not
// waited for. A file that cannot be moved, since somebody reads it, goes on growing until it can.
void Rotate(const std::filesystem::path& directory, std::uint64_t fullSize)
{
    std::error_code error;
    const FileLock lock(directory / "Tavo.log.lock", std::chrono::milliseconds(0));
    if (!lock.IsHeld() || std::filesystem::file_size(LogFile(directory, 0), error) < fullSize || error)
        return;

    const DWORD kept = GetConfigDWord(eConfigLogFileCount, nullptr);
    for (DWORD age = kMostOlderLogs; age > kept; --age)
        std::filesystem::remove(LogFile(directory, age), error);
    if (kept == 0)
    {
        std::filesystem::remove(LogFile(directory, 0), error);
        return;
    }
    // A gap, left where the newest could not be moved, ends the shifting.
    DWORD gap = 1;
    while (gap < kept && std::filesystem::exists(LogFile(directory, gap), error))
        ++gap;
    for (DWORD age = gap; age > 0; --age)
        std::filesystem::rename(LogFile(directory, age - 1), LogFile(directory, age), error);
}

// Whether the disk had no room for the last line's end. A line that another process is just writing goes on.
bool EndsInTornLine(const AppendFile& file)
{
    const std::uint64_t size = file.SizeInMidLine();
    if (size == 0)
        return false;
    std::this_thread::sleep_for(kTimeForALine);
    return file.SizeInMidLine() == size;
}

// Empty when it is written, else why it is not. After a line that was torn, by whatever process, it is a line
// of its own all the same.
ZTString Write(const std::filesystem::path& directory, const std::string& line)
{
    const std::filesystem::path path = LogFile(directory, 0);
    const std::uint64_t limit = std::uint64_t{GetConfigDWord(eConfigLogSizeLimitKB, nullptr)} * 1024;
    if (limit != 0)
    {
        std::error_code error;
        const std::uint64_t size = std::filesystem::file_size(path, error);
        if (!error && size != 0 && size + line.size() > limit)
            Rotate(directory, size);
    }
    AppendFile file(path);
    if (file.IsOpen())
        file.Append(EndsInTornLine(file) ? "\n" + line : line);
    return file.Problem();
}

void WriteLine(const std::string& line)
{
    const std::filesystem::path directory = NativePath(GetLogDirectory().AsView());
    const ZTString problem = Write(directory, line);
    if (problem.IsEmpty())
        return;
    // Where there is no directory, why that is tells more.
    const ZTString missing = MakePrivateDirectory(directory);
    TellTrouble(missing.IsEmpty() ? problem : missing);
}

} // namespace

void SetLogDirectorySetting(eConfigID setting)
{
    gDirectorySetting = setting;
}

void SetThreadNameInLog(const wchar_t* name)
{
    const std::string narrow = Escaped(ViewOf(name)).substr(0, kLongestThreadName);
    *std::copy(narrow.begin(), narrow.end(), tThreadName.begin()) = '\0';
}

} // namespace kelvane

using namespace kelvane;

ZTString GetLogDirectory()
{
    static auto& guard = *new std::mutex;
    static auto& known = *new ZTString;

    std::unique_lock lock(guard);
    if (known.IsEmpty())
    {
        // Reading a setting may log, which asks for the directory.
        lock.unlock();
        ZTString directory = GetConfigStr(gDirectorySetting, nullptr);
        const bool isForeign =
            !directory.IsEmpty() && LeadsThroughForeignLink(NativePath(FullDirectory(directory).AsView()));
        if (isForeign)
            std::fprintf(stderr,
                         "Tavo: the log directory %s is not used: another account has put a link there\n",
                         Narrow(directory.AsView()).c_str());
        if (directory.IsEmpty() || isForeign)
            directory = L"Logs";
        lock.lock();
        if (known.IsEmpty())
            known = FullDirectory(directory);
    }
    ZTString result = known;
    lock.unlock();
    MakePrivateDirectory(NativePath(result.AsView()));
    return result;
}

void LogNF(unsigned char severity, const wchar_t* text, bool)
{
    // How a change of a setting went is told also where the change itself silences the log.
    if (gRunningApp == kAppSetConfig || severity <= GetConfigDWord(eConfigLogLevel, nullptr))
        WriteLine(LineOf(severity, ViewOf(text)));
}

void _Log(unsigned char severity, const wchar_t* format, const PlaceholderValues& values)
{
    LogNF(severity, _StrFormat(format, values), false);
}

void LogModuleLoaded(HINSTANCE instance, bool)
{
    std::array<wchar_t, 1024> path{};
    GetModuleFileNameW(instance, path.data(), static_cast<DWORD>(path.size()));
    _Log(kLogProgress, L"Module loaded: {0:s}", {path.data()});
}
