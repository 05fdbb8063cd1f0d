#pragma once

/// @file
/// The congruential generator x' = (2416 x + 374441) mod 1771875 of `RnNumRecUniformRng`, some of
/// its states ahead of their use: they depend on nothing but each other, while the shuffle has to
/// wait for each sample to know the next.

#include <cstdint>

namespace Kr::ShuffledStream
{

constexpr std::uint32_t SHUFFLESIZE = 97; ///< entries of the shuffle table
constexpr std::uint32_t modulus = 1771875;
constexpr std::uint32_t multiplier = 2416;
constexpr std::uint32_t increment = 374441;

/// An entry is a state with the place in the table that it chooses, once it comes out: the integer
/// part of 97 y, where y is the state as a fraction.
constexpr unsigned int stateBits = 24;

constexpr std::uint32_t getState(std::uint32_t entry)
{
    return entry & ((1U << stateBits) - 1);
}

constexpr std::uint32_t getPlace(std::uint32_t entry)
{
    return entry >> stateBits;
}

constexpr std::uint32_t getNext(std::uint32_t x)
{
    return (multiplier * x + increment) % modulus; // the product stays below 2^32
}

/// The entry of a state; `rm` is what makes it a fraction, which is rounded to T.
template <class T>
std::uint32_t getEntry(std::uint32_t x, T rm);

/// Writes the entries of the `count` states that follow `x`, and moves `x` to the last of them.
/// `count` is a multiple of 8.
template <class T>
void fill(std::uint32_t& x, T rm, unsigned int count, std::uint32_t* entries);

extern template std::uint32_t getEntry(std::uint32_t, float);
extern template std::uint32_t getEntry(std::uint32_t, double);
extern template void fill(std::uint32_t&, float, unsigned int, std::uint32_t*);
extern template void fill(std::uint32_t&, double, unsigned int, std::uint32_t*);

} // namespace Kr::ShuffledStream
