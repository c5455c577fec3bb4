// SPDX-License-Identifier: MIT
#include "shipment/ShipmentPlan.h"

#include "foundation/DateValue.h"
#include "foundation/Kelvane.h"

#include <time.h>

#include <deque>
#include <filesystem>
#include <string>
#include <string_view>

namespace
{

constexpr wchar_t kSeparator = std::filesystem::path::preferred_separator;

struct FindCloser
{
    ~FindCloser() { FindClose(find); }
    HANDLE find;
};

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
ZTString ListedName(std::wstring name)
{
    const auto isHalf = [&name](std::size_t at, wchar_t first) { return (name[at] & ~0x3FF) == first; };
    for (std::size_t i = 0; i < name.size(); ++i)
        if (isHalf(i, 0xD800) && i + 1 < name.size() && isHalf(i + 1, 0xDC00))
            ++i;
        else if (isHalf(i, 0xD800) || isHalf(i, 0xDC00))
            name[i] = L'?';
    return name.c_str();
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
        if (current.IsEmpty() || current[current.GetLength() - 1] != kSeparator)
            current += kSeparator;

        WIN32_FIND_DATAW entry{};
        const HANDLE find = FindFirstFileW(current + L"*", &entry);
        if (find == INVALID_HANDLE_VALUE)
            continue;
        const FindCloser closer{find};
        do
        {
            if (!IsDirectory(entry))
            {
                if (FILETIMEToTimeT(entry.ftLastWriteTime) < cutOff)
                    names.insert(ListedName(entry.cFileName));
            }
            else if (IsWalked(entry))
                waiting.push_back(current + entry.cFileName);
        } while (FindNextFileW(find, &entry));
    }
    return names;
}

ZTString ArchiverCommandLine(bool hasIgnoreList, const ZTString& archivePath)
{
    ZTString exclusion;
    if (hasIgnoreList)
        exclusion = ZTString(L"-x@") + kIgnoreListName;
    const ZTString archiver = GetPathInAppFolder(L"7za.exe");
    return _StrFormat(L"\"{0}\" a -r -ssw {1} \"{2}\" *", {archiver, exclusion, archivePath});
}
