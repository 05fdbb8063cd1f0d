#pragma once

/// @file
/// The bits of 32-bit words in the opposite order.

#include <cstdint>

namespace Kr
{

/// Of one word, or of all lanes.
template <class Words>
constexpr Words getReversedBits(Words x)
{
    x = x >> 16 | x << 16;
    x = (x >> 8 & 0x00FF00FFU) | (x & 0x00FF00FFU) << 8;
    x = (x >> 4 & 0x0F0F0F0FU) | (x & 0x0F0F0F0FU) << 4;
    x = (x >> 2 & 0x33333333U) | (x & 0x33333333U) << 2;
    return (x >> 1 & 0x55555555U) | (x & 0x55555555U) << 1;
}

} // namespace Kr
