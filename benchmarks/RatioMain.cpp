// SPDX-License-Identifier: MIT
// main() of every benchmark program. Benchmarks are named "case/subject", our own subject "tavo". After the
// usual table comes our median time divided by each peer's: below 1 ours is faster. The time is the
// processor's, unless a benchmark measures real time.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <vector>

namespace
{

class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            if (run.aggregate_name == "median")
                mMedians.push_back({run.run_name.function_name, run.run_name.time_type.empty()
                                                                    ? run.GetAdjustedCPUTime()
                                                                    : run.GetAdjustedRealTime()});
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        std::printf("\nOur time divided by the peer's\n");
        for (const Median& peer : mMedians)
        {
            const std::string name = peer.name.substr(0, peer.name.find('/'));
            for (const Median& own : mMedians)
                if (own.name == name + "/tavo" && own.name != peer.name)
                    std::printf("%-40s %6.2f\n", peer.name.c_str(), own.time / peer.time);
        }
    }

private:
    struct Median
    {
        std::string name;
        double time;
    };
    std::vector<Median> mMedians;
};

} // namespace

int main(int argc, char** argv)
{
    std::string repetitions = "--benchmark_repetitions=5";
    std::string inTurns = "--benchmark_enable_random_interleaving=true";
    std::string aggregates = "--benchmark_report_aggregates_only=true";
    std::vector<char*> arguments{argv[0], repetitions.data(), inTurns.data(), aggregates.data()};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
}
