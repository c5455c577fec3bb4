// SPDX-License-Identifier: MIT
// The checksum beside liblzma's, which uses carry-less multiplication where the processor has it.
#include "foundation/Oriska.h"

#include <benchmark/benchmark.h>
#include <lzma.h>

#include <string>

namespace
{

template <typename Checksum>
void Run(benchmark::State& state, std::size_t size, Checksum checksum)
{
    const std::string bytes(size, 'x');
    for (auto _ : state)
        benchmark::DoNotOptimize(checksum(bytes.data(), bytes.size()));
    state.SetBytesProcessed(static_cast<std::int64_t>(static_cast<std::size_t>(state.iterations()) * size));
}

std::uint64_t Liblzma(const char* data, std::size_t size)
{
    return lzma_crc64(reinterpret_cast<const std::uint8_t*>(data), size, 0);
}

#define TAVO_CASE(name, size)                                                                                \
    BENCHMARK_CAPTURE(Run, tavo, size, CRC64)->Name(name "/tavo");                                           \
    BENCHMARK_CAPTURE(Run, liblzma, size, Liblzma)->Name(name "/liblzma")

TAVO_CASE("20 bytes", 20);
TAVO_CASE("4 KB", 4 << 10);
TAVO_CASE("20 MB", 20 << 20);

} // namespace
