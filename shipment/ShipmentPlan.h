// SPDX-License-Identifier: MIT
// What a shipment is to do, worked out without a window: the archive's name, the files that are too old to
// send, and the archiver's command line.
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

// Packs everything in the working directory but the names of the ignore list, if there are any.
ZTString ArchiverCommandLine(bool hasIgnoreList, const ZTString& archivePath);
