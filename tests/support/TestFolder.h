// SPDX-License-Identifier: MIT
// What a test has for itself: a folder and files in it, names, a variable of the environment.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace fs = std::filesystem;

// Empty when it is not there.
std::string ReadFile(const fs::path& path);

// A text's lines without their ends.
std::vector<std::string> Lines(const std::string& text);

// Makes the folders above it too.
void WriteFile(const fs::path& path, const std::string& content);

std::string Repeated(const std::string& part, std::size_t times);

// Bytes that differ from place to place, and do not get fewer in an archive.
std::string RandomBytes(std::size_t count);

// A new folder, with a blank in its name unless told otherwise, gone at the end.
class TestFolder
{
public:
    explicit TestFolder(const std::string& name = "tavo test ");
    ~TestFolder();
    TestFolder& operator=(TestFolder&&) = delete; // nor any other copy

    const fs::path& Path() const { return mPath; }
    std::string Read(const fs::path& name) const { return ReadFile(mPath / name); }
    void Write(const std::string& name, const std::string& text) const { WriteFile(mPath / name, text); }

private:
    fs::path mPath;
};

// A name that no other test run uses at the same time.
std::wstring UniqueName(const std::wstring& name);

// Takes the variable out of the environment where `value` is null.
void SetVariable(const char* name, const char* value);

// Does so until the end of the block.
class Variable
{
public:
    Variable(const char* name, const char* value);
    ~Variable();
    Variable& operator=(Variable&&) = delete; // nor any other copy

private:
    std::string mName;
    std::optional<std::string> mOld;
};
