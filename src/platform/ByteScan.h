#pragma once

#include <cstdint>
#include <cstring>

namespace LibraryBrowser::ByteScan {

// Tests on eight bytes at once, for loops that pass over long runs of
// ordinary text looking for a few bytes that matter. Each answers whether
// any of the eight bytes qualifies, not which.

constexpr std::uint64_t everyByte(unsigned char b)
{
    return 0x0101010101010101u * b;
}

inline std::uint64_t eightBytesAt(const char* p)
{
    std::uint64_t bytes;
    std::memcpy(&bytes, p, sizeof bytes);
    return bytes;
}

constexpr bool hasZeroByte(std::uint64_t bytes)
{
    return ((bytes - everyByte(1)) & ~bytes & everyByte(0x80)) != 0;
}

constexpr bool hasByte(std::uint64_t bytes, unsigned char b)
{
    return hasZeroByte(bytes ^ everyByte(b));
}

// Bytes below `limit`, for a limit up to 0x80.
constexpr bool hasByteBelow(std::uint64_t bytes, unsigned char limit)
{
    return ((bytes - everyByte(limit)) & ~bytes & everyByte(0x80)) != 0;
}

constexpr bool hasHighByte(std::uint64_t bytes)
{
    return (bytes & everyByte(0x80)) != 0;
}

} // namespace LibraryBrowser::ByteScan
