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

// The path as the system's calls take it. On Linux that is UTF-8, less the characters that stand for bytes
// that are none (see GetCommandLineW of the layer).
std::filesystem::path NativePath(std::wstring_view path);

// `directory` as a full path with a separator behind it; a relative one lies in the program folder.
ZTString FullDirectory(const ZTString& directory);

// Makes the directory and those above it where they are missing. Others may not look into it.
void MakePrivateDirectory(const std::filesystem::path& directory);

// Excludes other processes, and other threads of this one, that lock the same directory. It leaves nothing in
// the directory and ends with the process.
class DirectoryLock
{
public:
    DirectoryLock(const std::filesystem::path& directory, std::chrono::milliseconds patience);
    ~DirectoryLock();
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;

    bool IsHeld() const;

private:
    std::intptr_t mHandle;
};

// A file that grows at its end only, whoever writes: each Append is one write of the system, so lines of
// several processes never mix. A new file may be read by its owner and its group.
class AppendFile
{
public:
    explicit AppendFile(const std::filesystem::path& path);
    ~AppendFile();
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;

    bool IsOpen() const;
    std::uint64_t Size() const;
    // `flush` waits until the disk has it.
    bool Append(std::string_view bytes, bool flush);

private:
    std::intptr_t mHandle;
};

struct FileContent
{
    bool missing = false;            // there is no such file
    std::optional<std::string> text; // nothing when it could not be read, or is longer than `limit`
};
FileContent ReadWholeFile(const std::filesystem::path& path, std::size_t limit);

// Puts a new content in a file's place. Whatever happens, a power failure included, the file then holds the
// old content or the new one; what failed leaves nothing behind. A file that the user may not write is
// refused. For one caller at a time (see DirectoryLock).
bool ReplaceWholeFile(const std::filesystem::path& path, std::string_view text);

// How WriteTextFile treats a file that is there.
enum class WriteMode
{
    CreateOnly, // fails
    Replace,
    Append,
};
bool WriteFileText(const std::filesystem::path& path, std::string_view text, WriteMode mode, bool share);

} // namespace kelvane
