// SPDX-License-Identifier: MIT
#include "libraries/kelvane/SettingsStore.h"

#include "foundation/Kelvane.h"
#include "libraries/kelvane/Files.h"
#include "libraries/kelvane/Text.h"

#include <atomic>
#include <cstdio>
#include <thread>

namespace kelvane
{
namespace
{

constexpr std::size_t kLongestFile = 1U << 20; // for reading and writing alike
constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kMoment{100};
constexpr std::chrono::milliseconds kSettled{500};
constexpr std::chrono::milliseconds kBetweenReads{20};
constexpr std::chrono::seconds kLongestUnsettled{3};

// Replacing a file replaces a link to it, so a link in its place (an installed program folder has one) is
// followed by hand, to a file that may not be there yet.
std::filesystem::path AtEndOfLinks(std::filesystem::path path)
{
    constexpr int kMostLinks = 40; // as the kernel
    for (int links = 0; links < kMostLinks; ++links)
    {
        std::error_code error;
        const std::filesystem::path target = std::filesystem::read_symlink(path, error);
        if (error)
            break;
        path = path.parent_path() / target;
    }
    return path;
}

const std::filesystem::path& StorePath()
{
    static const auto& path = *new std::filesystem::path(
        AtEndOfLinks(NativePath(GetPathInAppFolder(L"Tavo.settings.json").AsView())));
    return path;
}

// It lies beside the file, where whoever may change the settings may make it.
std::filesystem::path LockPath()
{
    return StorePath().parent_path() / "Tavo.settings.lock";
}

// Once in a process, since every read meets the same trouble. Told before it is logged: logging reads
// settings.
void TellTrouble(const wchar_t* text)
{
    static std::atomic<bool> told{false};
    if (!told.exchange(true))
        LogNF(kLogFailure, text, false);
}

std::string NameAside(int number)
{
    return "Tavo.settings.broken-" + std::to_string(number) + ".json";
}

// How many were moved away, as far as they are there still.
int SetAsideSoFar()
{
    std::error_code error;
    int number = 0;
    while (std::filesystem::exists(StorePath().parent_path() / NameAside(number + 1), error))
        ++number;
    return number;
}

// Moves the file away and gives its new name, or nothing when it stays where it is. The caller holds the
// lock, so nobody replaces the file meanwhile.
std::string SetAside()
{
    std::error_code error;
    const std::string name = NameAside(SetAsideSoFar() + 1);
    std::filesystem::rename(StorePath(), StorePath().parent_path() / name, error);
    return error ? std::string() : name;
}

bool HasChangedJustNow()
{
    const auto age = SinceLastWrite(StorePath());
    return age && std::chrono::abs(*age) < kSettled;
}

// Somebody may be in the middle of writing the file in its place: one that changed just now is read again,
// until it can be understood or has been left alone.
FileContent ReadSettled()
{
    const auto end = std::chrono::steady_clock::now() + kLongestUnsettled;
    FileContent content = ReadWholeFile(StorePath(), kLongestFile);
    while (content.text && FindSetting(*content.text, {}).finding == eFinding::Broken &&
           HasChangedJustNow() && std::chrono::steady_clock::now() < end)
    {
        std::this_thread::sleep_for(kBetweenReads);
        content = ReadWholeFile(StorePath(), kLongestFile);
    }
    return content;
}

std::atomic<bool> gSetAsideIsTold{false};

// Also on standard error, since the log then lies where the defaults want it, and perhaps nobody looks there.
// The caller does not hold the lock: logging reads settings, which may meet the same file.
void TellSetAside(const std::string& name)
{
    if (!gSetAsideIsTold.exchange(true))
        std::fprintf(stderr,
                     name.empty() ? "Tavo: %s cannot be understood and cannot be moved away: defaults hold\n"
                                  : "Tavo: %s could not be understood and was moved to %s: defaults hold\n",
                     Narrow(GetPathInAppFolder(L"Tavo.settings.json").AsView()).c_str(), name.c_str());
    if (name.empty())
        TellTrouble(L"Tavo.settings.json cannot be understood and cannot be moved away: defaults hold");
    else
        _Log(kLogFailure, L"Tavo.settings.json could not be understood and was moved to {0:S}: defaults hold",
             {name.c_str()});
}

// As long as nobody mends what an earlier run moved away, or stores a setting anew.
void TellSetAsideEarlier()
{
    if (gSetAsideIsTold)
        return;
    if (const int number = SetAsideSoFar(); number > 0)
        TellSetAside(NameAside(number));
}

FoundSetting FindIn(const FileContent& content, std::string_view name)
{
    if (content.text)
        return FindSetting(*content.text, name);
    if (!content.missing)
        TellTrouble(L"Tavo.settings.json cannot be read: defaults hold");
    return {eFinding::Absent, {}};
}

// Empty when it is written, else why it is not. `aside` tells what became of a file that was broken.
ZTString WriteLocked(std::string_view name, const SettingValue& value, std::optional<std::string>& aside)
{
    const FileLock lock(LockPath(), kPatience);
    if (!lock.Problem().IsEmpty())
        return _StrFormat(L"Tavo.settings.lock cannot be had: {0:s}", {lock.Problem()});
    if (!lock.IsHeld())
        return L"Tavo.settings.lock cannot be had: another process holds it";
    const FileContent content = ReadSettled();
    if (!content.text && !content.missing)
        return L"Tavo.settings.json cannot be read";
    std::optional<std::string> text = WithSetting(content.text.value_or("{}"), name, value);
    if (!text)
    {
        aside = SetAside();
        if (aside->empty())
            return L"Tavo.settings.json cannot be understood";
        text = WithSetting("{}", name, value);
    }
    if (text == content.text)
        return {};
    if (text->size() > kLongestFile)
        return _StrFormat(L"Tavo.settings.json would become larger than {0:u} bytes", {kLongestFile});
    const ZTString error = ReplaceWholeFile(StorePath(), *text);
    return error.IsEmpty() ? error : _StrFormat(L"Tavo.settings.json cannot be written: {0:s}", {error});
}

} // namespace

FoundSetting ReadStoredSetting(std::string_view name)
{
    const FileContent content = ReadWholeFile(StorePath(), kLongestFile);
    if (content.missing)
        TellSetAsideEarlier();
    FoundSetting found = FindIn(content, name);
    if (found.finding != eFinding::Broken)
        return found;

    std::string aside;
    {
        // Perhaps another process has mended it by now.
        const FileLock lock(LockPath(), kMoment);
        found = FindIn(ReadSettled(), name);
        if (found.finding != eFinding::Broken)
            return found;
        if (lock.IsHeld())
            aside = SetAside();
    }
    TellSetAside(aside);
    return {eFinding::Absent, {}};
}

ZTString WriteStoredSetting(std::string_view name, const SettingValue& value)
{
    std::optional<std::string> aside;
    ZTString refusal = WriteLocked(name, value, aside);
    if (aside)
        TellSetAside(*aside);
    return refusal;
}

} // namespace kelvane
