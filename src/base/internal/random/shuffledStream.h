#pragma once

/// @file
/// The congruential generator x' = (2416 x + 374441) mod 1771875 of `RnNumRecUniformRng`, eight
/// states at once. They depend on nothing but each other, so they can be made ahead of their use,
/// while the shuffle has to wait for each sample to know the next.

#include <base/internal/random/lanes.h>

#include <cstdint>
#include <cstring>

namespace Kr::ShuffledStream
{

constexpr std::uint32_t SHUFFLESIZE = 97; ///< entries of the shuffle table
constexpr std::uint32_t modulus = 1771875;
constexpr std::uint32_t multiplier = 2416;
constexpr std::uint32_t increment = 374441;

constexpr std::uint32_t getNext(std::uint32_t x)
{
    return (multiplier * x + increment) % modulus; // the product stays below 2^32
}

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

/// Some steps at once: x becomes a x + c.
struct Leap
{
    double a;
    double c;
};

constexpr Leap getLeap(unsigned int steps)
{
    std::uint64_t a = 1, c = 0;
    for (; steps != 0; --steps)
    {
        a = a * multiplier % modulus;
        c = (c * multiplier + increment) % modulus;
    }
    return {static_cast<double>(a), static_cast<double>(c)};
}

constexpr unsigned int groupLength = 8;

/// Makes the entries of the states that follow one, eight at a time. `T` is what a state's fraction
/// is rounded to.
///
/// States are residues of the least absolute value here. Products stay below 2^42, so that all is
/// exact but the quotient by the modulus; that is never near a half (the modulus is odd), so the
/// nearest integer, which a great summand leaves of it, is the right one.
template <class T>
class Entries
{
public:
    explicit Entries(std::uint32_t x, T rm)
        : _rm(rm)
    {
        const States start = static_cast<double>(x) + States{};
        leap(start, getLeaps(1), _low);
        leap(start, getLeaps(1 + laneCount), _high);
    }

    /// Writes the next eight.
    void make(std::uint32_t* entries)
    {
        constexpr Leap further = getLeap(groupLength);
        store(_low, entries);
        store(_high, entries + laneCount);
        leap(_low, {further.a + States{}, further.c + States{}}, _low);
        leap(_high, {further.a + States{}, further.c + States{}}, _high);
    }

private:
    static constexpr unsigned int laneCount = 4;
    using States = Lanes<double>;

    struct Leaps
    {
        States a;
        States c;
    };

    /// Each lane goes a step further than the one before.
    static constexpr Leaps getLeaps(unsigned int first)
    {
        const Leap leaps[] = {getLeap(first), getLeap(first + 1), getLeap(first + 2),
                              getLeap(first + 3)};
        return {States{leaps[0].a, leaps[1].a, leaps[2].a, leaps[3].a},
                States{leaps[0].c, leaps[1].c, leaps[2].c, leaps[3].c}};
    }

    static void leap(const States& from, const Leaps& leaps, States& to)
    {
        constexpr double great = 6755399441055744.; // 1.5 * 2^52: sums have no fraction
        const States product = from * leaps.a + leaps.c;
        const States quotient = (product * (1. / modulus) + great) - great;
        to = product - quotient * static_cast<double>(modulus);
    }

    void store(const States& states, std::uint32_t* entries) const
    {
        auto x = __builtin_convertvector(states, Lanes<std::int32_t>);
        x += x >> 31 & static_cast<std::int32_t>(modulus);
        const Lanes<T> y = __builtin_convertvector(x, Lanes<T>) * _rm;
        const States scaled = __builtin_convertvector(y, States) * static_cast<double>(SHUFFLESIZE);
        x |= __builtin_convertvector(scaled, Lanes<std::int32_t>) << stateBits;
        std::memcpy(entries, &x, sizeof x);
    }

    const T _rm;
    States _low;
    States _high;
};

/// The entry of one state.
template <class T>
std::uint32_t getEntry(std::uint32_t x, T rm)
{
    const T y = static_cast<T>(x) * rm;
    const double scaled = static_cast<double>(y) * SHUFFLESIZE;
    return x | static_cast<std::uint32_t>(scaled) << stateBits;
}

} // namespace Kr::ShuffledStream
