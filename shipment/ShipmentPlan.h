// SPDX-License-Identifier: MIT
// What a shipment does without a window: the archive's name, the files that are too old to send, the
// archiver's command line, and what is to be deleted.
#pragma once

#include "foundation/Oriska.h"

#include <cstdint>
#include <set>

constexpr const wchar_t* kIgnoreListName = L"uploadIgnoreList.txt";

// Files that were not written to for longer are not sent: five days, in seconds.
constexpr std::int64_t kOldestAge = 432000;

// The archive's file name without directory and ".zip": the wanted name without white space around it, or
// today's date when that leaves nothing, with "_" for each character that a file name cannot hold. `wanted`
// may be null.
ZTString ArchiveName(const wchar_t* wanted);

// Bare names of the files below `directory` whose last write lies before `cutOff`, in seconds since 1970.
// Links to directories are not followed, and a directory that cannot be listed is passed over. In a name,
// what is not text stands as "?", which the archiver takes for any one character.
std::set<ZTString> OldFileNames(const ZTString& directory, std::int64_t cutOff);

// With the archiver's own file, which is there until the archive is whole. Waits up to a second
// for each of the three while somebody holds it: a virus scanner, a backup.
void DeleteArchiveAndList(const ZTString& archivePath, const ZTString& listPath);

// Packs everything in the working directory but the names of the ignore list, if there are any.
ZTString ArchiverCommandLine(bool hasIgnoreList, const ZTString& archivePath);
