// SPDX-License-Identifier: MIT
// CRC-64/XZ: the polynomial of ECMA-182 in reflected form, all ones before and after. Sixteen bytes a step,
// one table for the place of each byte in the step.
#include "foundation/Oriska.h"

#include <array>
#include <bit>
#include <cstring>
#include <utility>

namespace
{

constexpr std::uint64_t kPolynomial = 0xC96C5795D7870F42;
constexpr std::size_t kStep = 16;

using Table = std::array<std::uint64_t, 256>;

// Entry b of table k: what byte b adds when k bytes follow it.
constexpr std::array<Table, kStep> MakeTables()
{
    std::array<Table, kStep> tables{};
    for (std::uint64_t byte = 0; byte < 256; ++byte)
    {
        std::uint64_t remainder = byte;
        for (int bit = 0; bit < 8; ++bit)
            remainder = (remainder >> 1) ^ ((remainder & 1) ? kPolynomial : 0);
        tables[0][byte] = remainder;
    }
    for (std::size_t k = 1; k < kStep; ++k)
        for (std::size_t byte = 0; byte < 256; ++byte)
        {
            const std::uint64_t shorter = tables[k - 1][byte];
            tables[k][byte] = (shorter >> 8) ^ tables[0][shorter & 0xFF];
        }
    return tables;
}

constexpr std::array<Table, kStep> kTables = MakeTables();

// What eight bytes of the step add; `Last` is the table of the last of them.
template <std::size_t Last, std::size_t... Byte>
std::uint64_t Advance(std::uint64_t eight, std::index_sequence<Byte...>)
{
    return (kTables[Last + 7 - Byte][(eight >> (8 * Byte)) & 0xFF] ^ ...);
}

template <std::size_t Last>
std::uint64_t Advance(std::uint64_t eight)
{
    return Advance<Last>(eight, std::make_index_sequence<8>());
}

std::uint64_t Load(const unsigned char* bytes)
{
    static_assert(std::endian::native == std::endian::little);
    std::uint64_t value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

} // namespace

std::uint64_t CRC64(const void* data, std::uint64_t byteCount)
{
    const auto* bytes = static_cast<const unsigned char*>(data);
    std::uint64_t crc = ~std::uint64_t{0};
    for (; byteCount >= kStep; byteCount -= kStep, bytes += kStep)
        crc = Advance<8>(crc ^ Load(bytes)) ^ Advance<0>(Load(bytes + 8));
    for (; byteCount != 0; --byteCount, ++bytes)
        crc = (crc >> 8) ^ kTables[0][(crc ^ *bytes) & 0xFF];
    return ~crc;
}
