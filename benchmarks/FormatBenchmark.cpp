// SPDX-License-Identifier: MIT
// The formatter beside the C library's swprintf and {fmt}, on the program's own texts. Each makes a string of
// its own kind from its result.
#include "foundation/Oriska.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <fmt/xchar.h>

#include <cwchar>
#include <string>

namespace
{

template <typename... Values>
std::wstring Swprintf(const wchar_t* format, Values... values)
{
    wchar_t buffer[256];
    const int length = std::swprintf(buffer, std::size(buffer), format, values...);
    return {buffer, static_cast<std::size_t>(length)};
}

// Runs one case; the clobber keeps the arguments from being folded into the format.
template <typename Make>
void Run(benchmark::State& state, Make make)
{
    unsigned number = 123456;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(number);
        auto text = make(number);
        benchmark::DoNotOptimize(text);
    }
}

const ZTString kServer(L"ldap.example.net");

#define TAVO_CASE(name, ours, swprintfs, fmts)                                                               \
    BENCHMARK_CAPTURE(Run, tavo, [](unsigned n) { return ours; })->Name(name "/tavo");                       \
    BENCHMARK_CAPTURE(Run, swprintf, [](unsigned n) { return swprintfs; })->Name(name "/swprintf");          \
    BENCHMARK_CAPTURE(Run, fmt, [](unsigned n) { return fmts; })->Name(name "/fmt")

TAVO_CASE("prefix", _StrFormat(L"[{0:u}ms] ", {n}), Swprintf(L"[%ums] ", n), fmt::format(L"[{}ms] ", n));
TAVO_CASE("server", _StrFormat(L"Server: {0:s}, port {1:u}\r\n", {kServer, n}),
          Swprintf(L"Server: %ls, port %u\r\n", kServer.GetString(), n),
          fmt::format(L"Server: {}, port {}\r\n", kServer.GetString(), n));
TAVO_CASE("mac", _StrFormat(L"{0:02X}-{1:02X}-{2:02X}-{3:02X}-{4:02X}-{5:02X}", {n & 255, n, n, n, n, n}),
          Swprintf(L"%02X-%02X-%02X-%02X-%02X-%02X", n & 255, n, n, n, n, n),
          fmt::format(L"{:02X}-{:02X}-{:02X}-{:02X}-{:02X}-{:02X}", n & 255, n, n, n, n, n));
TAVO_CASE("double", _StrFormat(L"{0:f}", {n / 7.0}), Swprintf(L"%f", n / 7.0), fmt::format(L"{:f}", n / 7.0));

} // namespace
