// SPDX-License-Identifier: MIT
// Listing a folder of 100,000 files with each one's time, beside the standard library's iterator.
#include <windows.h>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

namespace
{

constexpr int kFiles = 100'000;

// Made once, taken away at the end.
class Folder
{
public:
    Folder()
    {
        fs::create_directories(mPath);
        for (int index = 0; index < kFiles; ++index)
            std::ofstream(mPath / ("service-log-" + std::to_string(index) + ".txt"));
    }
    ~Folder() { fs::remove_all(mPath); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const fs::path& Path() const { return mPath; }

private:
    fs::path mPath = fs::temp_directory_path() / ("tavo-bench-" + std::to_string(GetTickCount()));
};

const fs::path& TheFolder()
{
    static const Folder folder;
    return folder.Path();
}

void Tavo(benchmark::State& state)
{
    const std::wstring pattern = (TheFolder() / L"*").wstring();
    for (auto _ : state)
    {
        WIN32_FIND_DATAW data = {};
        const HANDLE find = FindFirstFileW(pattern.c_str(), &data);
        do
        {
            benchmark::DoNotOptimize(data.ftLastWriteTime);
        } while (FindNextFileW(find, &data));
        FindClose(find);
    }
}

void StandardLibrary(benchmark::State& state)
{
    for (auto _ : state)
    {
        for (const fs::directory_entry& entry : fs::directory_iterator(TheFolder()))
        {
            std::wstring name = entry.path().filename().wstring();
            benchmark::DoNotOptimize(name);
            benchmark::DoNotOptimize(entry.is_directory());
            benchmark::DoNotOptimize(entry.last_write_time());
        }
    }
}

BENCHMARK(Tavo)->Name("100000 files/tavo")->Unit(benchmark::kMillisecond);
BENCHMARK(StandardLibrary)->Name("100000 files/std::filesystem")->Unit(benchmark::kMillisecond);

} // namespace
