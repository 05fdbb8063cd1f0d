#include <base/internal/log/lgFormat.h>

#include <cstring>

namespace Kr
{

namespace
{

static_assert(sizeof(double) == sizeof(std::uint64_t));

constexpr int mantissaBits = 52;
constexpr int exponentBias = 1023;
constexpr std::uint32_t million = 1000000;

struct Pairs
{
    constexpr Pairs()
    {
        for (int i = 0; i < 100; ++i)
        {
            digits[2 * i] = static_cast<char>('0' + i / 10);
            digits[2 * i + 1] = static_cast<char>('0' + i % 10);
        }
    }
    char digits[200] = {};
};
constexpr Pairs pairs;

std::uint64_t getBits(double value) noexcept
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

int getExponent(std::uint64_t bits) noexcept
{
    return static_cast<int>(bits >> mantissaBits & 0x7FF) - exponentBias;
}

/// Millionths in a fraction of 64 + `extraBits` bits below the point, rounded to the nearest, a tie
/// to the even one.
template <int extraBits>
std::uint32_t toMillionths(std::uint64_t fraction) noexcept
{
    // 64 by 20 bits: the product's upper bits in `high`, its lower 64 in `low`.
    const std::uint64_t lower = (fraction & 0xFFFFFFFF) * million;
    const std::uint64_t upper = (fraction >> 32) * million + (lower >> 32);
    const std::uint64_t low = upper << 32 | (lower & 0xFFFFFFFF);
    const auto high = static_cast<std::uint32_t>(upper >> 32);

    constexpr std::uint64_t half = std::uint64_t{1} << 63;
    const std::uint32_t result = high >> extraBits;
    std::uint64_t rest = low;
    bool below = false; // something of the rest is too small for its 64 bits
    if constexpr (extraBits != 0)
    {
        rest = std::uint64_t{high} << (64 - extraBits) | low >> extraBits;
        below = (low & ((1U << extraBits) - 1)) != 0;
    }
    const bool roundUp = rest > half || (rest == half && (below || (result & 1) != 0));
    return result + (roundUp ? 1 : 0);
}

char* writePair(char* to, std::uint32_t pair) noexcept
{
    std::memcpy(to, pairs.digits + 2 * pair, 2);
    return to + 2;
}

/// 64-bit division is slow on a 32-bit machine, and most numbers do without.
char* writeWhole(char* to, std::uint64_t value)
{
    return value <= 0xFFFFFFFF ? LgFormat::write(to, static_cast<std::uint32_t>(value))
                               : LgFormat::write<std::uint64_t>(to, value);
}

} // namespace

bool LgFormat::isEveryday(double value) noexcept
{
    return getExponent(getBits(value)) < 64;
}

char* LgFormat::write(char* to, double value) noexcept
{
    const std::uint64_t bits = getBits(value);
    const int exponent = getExponent(bits);
    // The value is mantissa * 2^(exponent - 52); what this says of subnormals rounds to 0 as well.
    const std::uint64_t implicitBit = std::uint64_t{1} << mantissaBits;
    const std::uint64_t mantissa = (bits & (implicitBit - 1)) | implicitBit;

    std::uint64_t whole = 0;
    std::uint32_t millionths = 0;
    if (exponent >= mantissaBits)
    {
        whole = mantissa << (exponent - mantissaBits);
    }
    else if (exponent >= -12)
    {
        // All of the fraction fits in 64 bits below the point ...
        whole = exponent >= 0 ? mantissa >> (mantissaBits - exponent) : 0;
        millionths = toMillionths<0>(mantissa << (exponent + 12));
    }
    else if (exponent >= -24)
    {
        // ... or in 76, of which the upper 12 are 0. Anything smaller is far from half a millionth.
        millionths = toMillionths<12>(mantissa << (exponent + 24));
    }
    if (millionths == million)
    {
        ++whole;
        millionths = 0;
    }

    if (bits >> 63 != 0)
        *to++ = '-';
    to = writeWhole(to, whole);
    *to++ = '.';
    to = writePair(to, millionths / 10000);
    to = writePair(to, millionths / 100 % 100);
    return writePair(to, millionths % 100);
}

} // namespace Kr
