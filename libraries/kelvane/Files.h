// SPDX-License-Identifier: MIT
// Files as the log and the settings need them: shared between processes and safe against a crash.
#pragma once

#include "foundation/Oriska.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kelvane
{

// The path as the system's calls take it: on Linux UTF-8, with the bytes in it that are not (see
// text/Unicode.h).
std::filesystem::path NativePath(std::wstring_view path);

// `directory` as a full path with a separator at its end; a relative one lies in the program folder.
ZTString FullDirectory(const ZTString& directory);

// Whether a link that somebody else than root or this account has made stands in the path, or in that of a
// link's target: it might lead anywhere, also later.
bool LeadsThroughForeignLink(const std::filesystem::path& path);

// Makes the directory and those above it where they are missing, also where a link of this account's own
// leads. Others may not look into it. Empty when it is there, else the system's text.
ZTString MakePrivateDirectory(const std::filesystem::path& directory);

// Excludes other processes, and other threads of this one, that lock the same path. A file lies there while
// the lock is held; only its owner may open it, so that nobody holds up an account of more rights, and root
// takes the place of an account that keeps it. The lock ends with the process, and a file that a killed one
// leaves is in nobody's way.
class FileLock
{
public:
    FileLock(const std::filesystem::path& path, std::chrono::milliseconds patience);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // False when somebody else kept it for too long, or the file cannot be made.
    bool IsHeld() const;
    // Why the file cannot be made: the system's text. Empty for a lock that is held, by whomever.
    const ZTString& Problem() const { return mProblem; }

private:
    std::filesystem::path mPath;
    std::intptr_t mHandle;
    ZTString mProblem;
};

// A file that grows at its end only, whoever writes: each Append is one write of the system, so lines of
// several processes never mix. A new file may be read by its owner and its group. What is not a plain file,
// or has a second name somewhere, is not opened.
class AppendFile
{
public:
    explicit AppendFile(const std::filesystem::path& path);
    ~AppendFile();
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;

    bool IsOpen() const;
    // The file's size where its last line has no end, else 0; also for a file that may not be read.
    std::uint64_t SizeInMidLine() const;
    void Append(std::string_view bytes);
    // What is wrong with the file, or the system's text, when one of these failed.
    const ZTString& Problem() const { return mProblem; }

private:
    std::intptr_t mHandle;
    ZTString mProblem;
};

struct FileContent
{
    bool missing = false;            // there is no such file
    std::optional<std::string> text; // nothing when it could not be read, or is longer than `limit`
};
FileContent ReadWholeFile(const std::filesystem::path& path, std::size_t limit);

// Below 0 for a time in the future; nothing when the system does not tell it.
std::optional<std::chrono::milliseconds> SinceLastWrite(const std::filesystem::path& path);

// Both write a new file beside `path`, which is then renamed: what lay there, a link for instance, is not
// written through. What fails leaves nothing behind. For one caller at a time.

// Whatever happens, a power failure included, the file then holds the old content or the new one. It keeps
// its owner and its mode; one that the user may not write is refused. Empty when done, else the system's
// text.
ZTString ReplaceWholeFile(const std::filesystem::path& path, std::string_view text);

// The file is for its owner alone.
bool WritePrivateFile(const std::filesystem::path& path, std::string_view text);

} // namespace kelvane
