#pragma once

/// @file
/// The two congruential generators of `RnLecuyerUniformRng`, modulo 2^31 - c with a small c: since
/// 2^31 is c modulo that, a product is reduced by folding what is above bit 31, c times, onto the
/// rest. The result of one fold of a step stays below 2^32, so states are kept like that and are
/// reduced to the end only where they are combined, off the chain from one step to the next.

#include <cstdint>

namespace Kr::Lecuyer
{

/// state * multiplier modulo 2^31 - fold.
template <std::uint32_t Multiplier, std::uint32_t Fold>
struct Congruence
{
    static constexpr std::uint32_t multiplier = Multiplier;
    static constexpr std::uint32_t fold = Fold;
    static constexpr std::uint32_t modulus = 0x80000000U - Fold;

    /// From any state below 2^32 to one below 2^31 + 2^25.
    static constexpr std::uint32_t step(std::uint32_t state)
    {
        const std::uint64_t product = std::uint64_t(state) * Multiplier;
        return static_cast<std::uint32_t>((product & 0x7FFFFFFFU) + (product >> 31) * Fold);
    }

    static constexpr std::uint32_t multiply(std::uint32_t a, std::uint32_t b)
    {
        return static_cast<std::uint32_t>(std::uint64_t(a) * b % modulus);
    }

    /// The multiplier of so many steps at once.
    static constexpr std::uint32_t getPower(std::uint64_t steps)
    {
        std::uint32_t result = 1;
        for (std::uint32_t square = Multiplier; steps != 0; steps >>= 1)
        {
            if ((steps & 1) != 0)
                result = multiply(result, square);
            square = multiply(square, square);
        }
        return result;
    }
};

using First = Congruence<40014, 85>;
using Second = Congruence<40692, 249>;

/// The sum of the two states, less the first modulus, brought into 0 ... 2147483562.
inline std::int32_t combine(std::uint32_t state1, std::uint32_t state2)
{
    // A state is below twice its modulus: the difference's sign tells whether to add it again.
    const auto reduce = [](std::uint32_t state, std::uint32_t modulus)
    {
        const auto less = static_cast<std::int32_t>(state - modulus);
        return less + static_cast<std::int32_t>(modulus & static_cast<std::uint32_t>(less >> 31));
    };
    constexpr auto modulus = static_cast<std::int32_t>(First::modulus);
    const std::int32_t sum = reduce(state1, First::modulus) - modulus + //
                             reduce(state2, Second::modulus);
    return sum < 1 ? sum + (modulus - 1) : sum;
}

/// Writes `n` combined values and moves the states past them; as fast as the machine can.
void fill(std::uint32_t& state1, std::uint32_t& state2, unsigned int n, std::int32_t* values);

} // namespace Kr::Lecuyer
