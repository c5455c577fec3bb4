// SPDX-License-Identifier: MIT
// A directory of a test's own, and what lies in it.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

// Gone with the object.
class TemporaryDirectory
{
public:
    TemporaryDirectory()
    {
        std::random_device random;
        mPath = std::filesystem::temp_directory_path() /
                ("tavo-test-" + std::to_string(random()) + std::to_string(random()));
        std::filesystem::create_directories(mPath);
    }
    ~TemporaryDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& Path() const { return mPath; }

private:
    std::filesystem::path mPath;
};

// Makes the directories above it too.
inline void WriteFile(const std::filesystem::path& path, const std::string& content)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

// Empty when it is not there.
inline std::string ReadFile(const std::filesystem::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

// Bytes that differ from place to place, and do not get fewer in an archive.
inline std::string RandomBytes(std::size_t count)
{
    std::mt19937_64 generator(count);
    std::string bytes(count, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(generator());
    return bytes;
}
