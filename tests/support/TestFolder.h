// SPDX-License-Identifier: MIT
// What a test has for itself: a folder, names, a variable of the environment.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

// A new folder with a blank in its name, gone at the end.
class TestFolder
{
public:
    TestFolder();
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const std::filesystem::path& Path() const { return mPath; }
    std::string Read(const std::filesystem::path& name) const; // empty when it is not there
    void Write(const std::filesystem::path& name, const std::string& text) const;

private:
    std::filesystem::path mPath;
};

// A name that no other test run uses at the same time.
std::wstring UniqueName(const std::wstring& name);

// Sets a variable, or takes it out where the value is null, until the end of the block.
class Variable
{
public:
    Variable(const char* name, const char* value);
    ~Variable();
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    std::string mName;
    std::optional<std::string> mOld;
};
