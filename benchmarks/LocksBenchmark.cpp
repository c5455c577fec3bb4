// SPDX-License-Identifier: MIT
// The product's lock beside the standard library's recursive one, free and contended by two threads, and the
// emptying of a registered vector beside that of a bare one.
#include "foundation/Cleanable.h"

#include <benchmark/benchmark.h>

#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

namespace
{

// The program is never alone with one thread, and the C library drops its atomic operations where one is.
std::jthread gOtherThread(
    [](const std::stop_token& stop)
    {
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any().wait(lock, stop, [] { return false; });
    });

CLockCS gLock;
std::recursive_mutex gMutex;
int gCounter = 0;

void Tavo(benchmark::State& state)
{
    for (auto _ : state)
    {
        const CAcquireCS acquired(gLock);
        benchmark::DoNotOptimize(++gCounter);
    }
}

void RecursiveMutex(benchmark::State& state)
{
    for (auto _ : state)
    {
        const std::lock_guard guard(gMutex);
        benchmark::DoNotOptimize(++gCounter);
    }
}

// Each iteration empties 100,000 strings, which are put in outside the measured time.
template <typename Vector, typename Clean>
void CleanStrings(benchmark::State& state, Vector& vector, std::vector<ZTString>& items, Clean clean)
{
    for (auto _ : state)
    {
        state.PauseTiming();
        items.assign(100'000, ZTString(L"element"));
        state.ResumeTiming();
        clean(vector);
    }
}

void CleanRegistered(benchmark::State& state)
{
    CleanableVector<ZTString> vector;
    CleanStrings(state, vector, vector.mItems, [](auto& object) { object.Clean(); });
}

void CleanBare(benchmark::State& state)
{
    std::vector<ZTString> vector;
    CleanStrings(state, vector, vector, [](auto& object) { object.clear(); });
}

BENCHMARK(Tavo)->Name("free lock/tavo");
BENCHMARK(RecursiveMutex)->Name("free lock/recursive_mutex");
BENCHMARK(Tavo)->Name("contended by two/tavo")->Threads(2)->UseRealTime();
BENCHMARK(RecursiveMutex)->Name("contended by two/recursive_mutex")->Threads(2)->UseRealTime();
BENCHMARK(CleanRegistered)->Name("100000 cleaned/tavo")->Unit(benchmark::kMicrosecond);
BENCHMARK(CleanBare)->Name("100000 cleaned/bare vector")->Unit(benchmark::kMicrosecond);

} // namespace
