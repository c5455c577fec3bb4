// SPDX-License-Identifier: MIT
// A shipment's parts and the whole of it, each beside the commands that a user would type instead: find for
// the walk, curl -T for the upload, 7za and curl -T for the whole. Needs root, for a network with a server of
// its own.
#include "libraries/ipworks/IPWorks.h"
#include "shipment/ShipmentPlan.h"
#include "tests/support/OwnNetwork.h"
#include "tests/support/ProgramFolder.h"
#include "tests/support/TestFolder.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <thread>

namespace fs = std::filesystem;

namespace
{

constexpr const char* kUser = "zt-ftp";
constexpr const char* kPassword = "Kesto-42";
constexpr std::int64_t kFiveDays = 432000;
constexpr int kFilesInFolder = 1000;
constexpr std::uintmax_t kUploadBytes = 1'000'000'000;

// Before any thread is made.
const bool kHasNetwork = EnterOwnNetwork();

const fs::path& Tree(std::int64_t files)
{
    static std::map<std::int64_t, std::unique_ptr<TestFolder>> trees;
    std::unique_ptr<TestFolder>& tree = trees[files];
    if (!tree)
    {
        tree = std::make_unique<TestFolder>();
        for (std::int64_t i = 0; i < files; ++i)
        {
            const fs::path folder = tree->Path() / std::to_string(i / kFilesInFolder);
            if (i % kFilesInFolder == 0)
                fs::create_directory(folder);
            const fs::path file = folder / (std::to_string(i) + ".log");
            std::ofstream{file};
            if (i % 10 == 0)
                fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(24 * 30));
        }
    }
    return tree->Path();
}

const fs::path& BigFile()
{
    static const TestFolder directory("tavo-bench-");
    static const fs::path file = directory.Path() / "big.zip";
    if (!fs::exists(file))
    {
        std::ofstream{file};
        fs::resize_file(file, kUploadBytes);
    }
    return file;
}

void Run(benchmark::State& state, const std::string& command)
{
    if (std::system((command + " >/dev/null 2>&1").c_str()) != 0)
        state.SkipWithError(command.c_str());
}

std::string CurlUpload(const fs::path& file, const std::string& host)
{
    return "curl -s -T '" + file.string() + "' --user " + kUser + ":" + kPassword + " ftp://" + host + "/";
}

void Walk(benchmark::State& state)
{
    const ZTString root(Tree(state.range(0)).wstring().c_str());
    for (auto _ : state)
        benchmark::DoNotOptimize(OldFileNames(root, std::time(nullptr) - kFiveDays));
}

void Find(benchmark::State& state)
{
    const std::string command = "find '" + Tree(state.range(0)).string() + "' -type f -mtime +5";
    for (auto _ : state)
        Run(state, command);
}

void Upload(benchmark::State& state)
{
    const RealFtpServer server(kUser, kPassword);
    std::wstring file = BigFile().wstring();
    void* component = IPWorks_FTP_Create([](void*, int, int, void**, int*) { return 0; }, nullptr);
    const auto set = [component](int property, const char* text)
    { IPWorks_FTP_Set(component, property, 0, const_cast<char*>(text), 0); };
    set(kIPWorksUser, kUser);
    set(kIPWorksPassword, kPassword);
    set(kIPWorksRemoteHost, "127.0.0.1");
    set(kIPWorksRemoteFile, "big.zip");
    IPWorks_FTP_Set(component, kIPWorksLocalFile, 0, file.data(), 0);
    for (auto _ : state)
    {
        void* params[] = {nullptr};
        int lengths[] = {0};
        if (IPWorks_FTP_Do(component, kIPWorksUpload, 0, params, lengths, 0) != 0)
            state.SkipWithError(IPWorks_FTP_GetLastError(component));
    }
    IPWorks_FTP_Destroy(component);
}

void Curl(benchmark::State& state)
{
    const RealFtpServer server(kUser, kPassword);
    const std::string command = CurlUpload(BigFile(), "127.0.0.1");
    for (auto _ : state)
        Run(state, command);
}

// 200 MB in 20 files that pack to about half.
void FillLogs(const fs::path& logs)
{
    fs::create_directories(logs);
    std::mt19937_64 generator(1);
    for (int file = 0; file < 20; ++file)
    {
        std::string content(10'000'000, ' ');
        for (char& byte : content)
            byte = static_cast<char>('0' + generator() % 16);
        std::ofstream(logs / (std::to_string(file) + ".log"), std::ios::binary) << content;
    }
}

// The highest resident size of the program while it runs, in MiB. It looks seldom, since looking takes time
// from what is measured, and the system keeps the highest.
class PeakMemory
{
public:
    explicit PeakMemory(const fs::path& program) : mThread([this, program] { Watch(program); }) {}
    double Stop()
    {
        mEnd = true;
        mThread.join();
        return static_cast<double>(mKilobytes) / 1024;
    }

private:
    void Watch(const fs::path& program)
    {
        while (!mEnd)
        {
            for (const fs::directory_entry& entry : fs::directory_iterator("/proc"))
            {
                std::error_code error;
                if (fs::read_symlink(entry.path() / "exe", error) != program || error)
                    continue;
                std::ifstream status(entry.path() / "status");
                for (std::string line; std::getline(status, line);)
                    if (line.rfind("VmHWM:", 0) == 0)
                        mKilobytes = std::max(mKilobytes, std::atol(line.c_str() + 6));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(500));
        }
    }

    std::atomic<bool> mEnd{false};
    long mKilobytes = 0;
    std::thread mThread;
};

double Seconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Less what a shipment of nothing takes: the start, the report and the fixed pauses.
void WholeShipment(benchmark::State& state)
{
    PointHostHere(TAVO_SUPPORT_HOST);
    const RealFtpServer server(kUser, kPassword);
    const ProgramFolder folder;
    ProgramStart start;
    start.arguments = {"-FTP_LOG=case", "-AUTOCLOSE", "yes"};
    start.limit = std::chrono::seconds(600);
    const auto ship = [&]
    {
        if (folder.Run(start).console.find("Successfully sent") == std::string::npos)
            state.SkipWithError("the shipment failed");
    };
    ship();
    const double nothing = Seconds(ship);
    FillLogs(folder.Path() / "Logs");
    PeakMemory memory(folder.Program());
    for (auto _ : state)
        state.SetIterationTime(Seconds(ship) - nothing);
    state.counters["peak MiB"] = memory.Stop();
}

void Script(benchmark::State& state)
{
    const RealFtpServer server(kUser, kPassword);
    const TestFolder directory("tavo-bench-");
    FillLogs(directory.Path());
    const std::string command = "cd '" + directory.Path().string() +
                                "' && '" TAVO_PROGRAM_DIR "/7za.exe' a -r -ssw case.zip '*' && " +
                                CurlUpload(directory.Path() / "case.zip", "127.0.0.1") + " && rm case.zip";
    for (auto _ : state)
        state.SetIterationTime(Seconds([&] { Run(state, command); }));
}

BENCHMARK(Walk)->Name("walk/tavo")->Arg(100'000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Find)->Name("walk/find -mtime +5")->Arg(100'000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Upload)->Name("1 GB/tavo")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Curl)->Name("1 GB/curl -T")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(WholeShipment)
    ->Name("200 MB shipment/tavo")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(1);
BENCHMARK(Script)
    ->Name("200 MB shipment/7za and curl")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(1);

} // namespace
