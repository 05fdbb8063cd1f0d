#include <base/internal/random/lanes.h>
#include <base/internal/random/shuffledStream.h>

#include <cstring>

namespace Kr::ShuffledStream
{

namespace
{

constexpr unsigned int laneCount = 4;

/// Four states, each plus a half: so no quotient by the modulus is near an integer, and its
/// integer part is right although the quotient is rounded. All else is exact, below 2^42.
using States = Lanes<double>;

constexpr double shift = 0.5;

/// Some steps at once, in terms of the states plus a half: x becomes a x + c.
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
    return {static_cast<double>(a), static_cast<double>(c) + shift - shift * static_cast<double>(a)};
}

/// A leap for each lane.
struct Leaps
{
    States a;
    States c;
};

constexpr Leaps makeLeaps(unsigned int first, unsigned int difference)
{
    const Leap leaps[] = {getLeap(first), getLeap(first + difference),
                          getLeap(first + 2 * difference), getLeap(first + 3 * difference)};
    return {States{leaps[0].a, leaps[1].a, leaps[2].a, leaps[3].a},
            States{leaps[0].c, leaps[1].c, leaps[2].c, leaps[3].c}};
}

void take(const Leaps& leaps, const States& from, States& to)
{
    const States product = from * leaps.a + leaps.c;
    const auto quotient = __builtin_convertvector(product * (1. / modulus), Lanes<std::int32_t>);
    to = product - __builtin_convertvector(quotient, States) * modulus;
}

template <class T>
void store(const States& states, T rm, std::uint32_t* entries)
{
    const auto x = __builtin_convertvector(states, Lanes<std::int32_t>); // drops the half
    const Lanes<T> y = __builtin_convertvector(x, Lanes<T>) * rm;
    const States scaled = __builtin_convertvector(y, States) * static_cast<double>(SHUFFLESIZE);
    const auto places = __builtin_convertvector(scaled, Lanes<std::int32_t>);
    const Lanes<std::int32_t> lanes = x | places << stateBits;
    std::memcpy(entries, &lanes, sizeof lanes);
}

} // namespace

template <class T>
std::uint32_t getEntry(std::uint32_t x, T rm)
{
    const T y = static_cast<T>(x) * rm;
    const double scaled = static_cast<double>(y) * SHUFFLESIZE;
    return x | static_cast<std::uint32_t>(scaled) << stateBits;
}

template <class T>
void fill(std::uint32_t& x, T rm, unsigned int count, std::uint32_t* entries)
{
    static constexpr Leaps toLow = makeLeaps(1, 1), toHigh = makeLeaps(laneCount + 1, 1);
    static constexpr Leaps further = makeLeaps(2 * laneCount, 0);
    const States start = static_cast<double>(x) + shift + States{};
    States low{}, high{};
    take(toLow, start, low);
    take(toHigh, start, high);
    for (std::uint32_t* const end = entries + count;;)
    {
        store(low, rm, entries);
        store(high, rm, entries + laneCount);
        entries += 2 * laneCount;
        if (entries == end)
            break;
        take(further, low, low);
        take(further, high, high);
    }
    x = getState(entries[-1]);
}

template std::uint32_t getEntry(std::uint32_t, float);
template std::uint32_t getEntry(std::uint32_t, double);
template void fill(std::uint32_t&, float, unsigned int, std::uint32_t*);
template void fill(std::uint32_t&, double, unsigned int, std::uint32_t*);

} // namespace Kr::ShuffledStream
