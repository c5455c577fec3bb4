// SPDX-License-Identifier: MIT
#include "tests/support/TestFolder.h"

#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

std::string ReadFile(const fs::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

void WriteFile(const fs::path& path, const std::string& content)
{
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

std::string Repeated(const std::string& part, std::size_t times)
{
    std::string text;
    while (times-- > 0)
        text += part;
    return text;
}

std::string RandomBytes(std::size_t count)
{
    std::mt19937_64 generator(count);
    std::string bytes(count, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(generator());
    return bytes;
}

TestFolder::TestFolder(const std::string& name)
    : mPath(fs::temp_directory_path() / (name + std::to_string(std::random_device()())))
{
    fs::create_directory(mPath);
}

TestFolder::~TestFolder()
{
    std::error_code ignored;
    fs::remove_all(mPath, ignored);
}

std::wstring UniqueName(const std::wstring& name)
{
    static const unsigned run = std::random_device()();
    return L"Tavo_Test_" + std::to_wstring(run) + L"_" + name;
}

Variable::Variable(const char* name, const char* value) : mName(name)
{
    if (const char* old = std::getenv(name))
        mOld = old;
    SetVariable(name, value);
}

Variable::~Variable()
{
    SetVariable(mName.c_str(), mOld ? mOld->c_str() : nullptr);
}
