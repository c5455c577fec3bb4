// SPDX-License-Identifier: MIT
#include "tests/support/TestFolder.h"

#include "tests/support/System.h"

#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

TestFolder::TestFolder()
    : mPath(std::filesystem::temp_directory_path() / ("tavo test " + std::to_string(std::random_device()())))
{
    std::filesystem::create_directory(mPath);
}

TestFolder::~TestFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

std::string TestFolder::Read(const std::filesystem::path& name) const
{
    const std::ifstream file(mPath / name, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

void TestFolder::Write(const std::filesystem::path& name, const std::string& text) const
{
    std::ofstream(mPath / name, std::ios::binary) << text;
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
