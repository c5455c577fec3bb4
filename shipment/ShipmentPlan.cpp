// SPDX-License-Identifier: MIT
#include "shipment/ShipmentPlan.h"

#include "base/Owned.h"
#include "foundation/DateValue.h"
#include "foundation/Kelvane.h"
#include "shipment/LastWrite.h"
#include "text/SafeToShow.h"
#include "text/Unicode.h"

#include <time.h>

#include <deque>
#include <filesystem>
#include <string>
#include <string_view>

namespace
{

constexpr wchar_t kSeparator = std::filesystem::path::preferred_separator;

bool IsDirectory(const WIN32_FIND_DATAW& entry)
{
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsWalked(const WIN32_FIND_DATAW& entry)
{
    const std::wstring_view name = entry.cFileName;
    return name != L"." && name != L".." && !IsFileOrDirLink(entry);
}

// The name with "?" for each half of a surrogate pair, which the list's UTF-8 cannot hold.
ZTString ListedName(std::wstring_view name)
{
    std::wstring listed;
    while (!name.empty())
    {
        const std::wstring_view before = name;
        const char32_t point = text::TakePoint(name);
        const std::size_t units = before.size() - name.size();
        // 7-Zip 23.01, which Ubuntu 24.04 has, refuses the whole list for one character that is two in
        // UTF-16, by which each 7-Zip matches.
        const bool isRefused = point > 0xFFFF && units == 1;
        listed += isRefused ? L"??" : !text::IsCharacter(point) ? L"?" : before.substr(0, units);
    }
    return ZTString(listed.c_str());
}

// Within quotation marks in a command line. On Linux a folder's name may hold one.
ZTString Escaped(const ZTString& path)
{
    std::wstring escaped;
    std::size_t backslashes = 0; // that stand before
    for (const wchar_t character : path.AsView())
    {
        if (character == L'"')
            escaped.append(backslashes + 1, L'\\');
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        escaped += character;
    }
    return ZTString(escaped.c_str());
}

} // namespace

ZTString ArchiveName(const wchar_t* wanted)
{
    ZTString name(wanted);
    name.Trim(L"\r\n\t ");
    if (name.IsEmpty())
    {
        const DateValue today = DateFromTime(_time64(nullptr));
        name.Format(L"Logs-{0}-{1}-{2}", today.GetYear(), today.GetMonth(), today.GetDay());
    }
    RemoveIllegalFileSystemCharacters(name, L"_");
    return name;
}

std::set<ZTString> OldFileNames(const ZTString& directory, std::int64_t cutOff)
{
    std::set<ZTString> names;
    std::deque<ZTString> waiting{directory};
    while (!waiting.empty())
    {
        ZTString current = waiting.back();
        waiting.pop_back();
        if (current[current.GetLength() - 1] != kSeparator)
            current += kSeparator;

        WIN32_FIND_DATAW entry{};
        const HANDLE find = FindFirstFileW(current + L"*", &entry);
        if (find == INVALID_HANDLE_VALUE)
            continue;
        const Owned<void, FindClose> closer(find);
        do
        {
            if (!IsDirectory(entry))
            {
                if (FILETIMEToTimeT(entry.ftLastWriteTime) < cutOff &&
                    FILETIMEToTimeT(LastWrite(current + entry.cFileName, entry)) < cutOff)
                    names.insert(ListedName(entry.cFileName));
            }
            else if (IsWalked(entry))
                waiting.push_back(current + entry.cFileName);
        } while (FindNextFileW(find, &entry) != FALSE);
    }
    return names;
}

void DeleteArchiveAndList(const ZTString& archivePath, const ZTString& listPath)
{
    constexpr int kTries = 20;
    constexpr DWORD kPause = 50; // milliseconds
    for (const ZTString& path : {archivePath, ZTString(archivePath + L".tmp"), listPath})
        for (int tries = 1;
             DeleteFileW(path) == FALSE && GetLastError() == ERROR_SHARING_VIOLATION && tries < kTries;
             ++tries)
            Sleep(kPause);
}

ZTString ArchiverCommandLine(bool hasIgnoreList, const ZTString& archivePath)
{
    ZTString exclusion;
    if (hasIgnoreList)
        exclusion = ZTString(L"-x@") + kIgnoreListName;
    const ZTString archiver = GetPathInAppFolder(L"7za.exe");
    return _StrFormat(L"\"{0}\" a -r -ssw {1} \"{2}\" *",
                      {Escaped(archiver), exclusion, Escaped(archivePath)});
}
