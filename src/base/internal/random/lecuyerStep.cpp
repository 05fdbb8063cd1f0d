#include <base/internal/random/lecuyerStep.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Kr::Lecuyer
{

namespace
{

void fillStepwise(std::uint32_t& state1, std::uint32_t& state2, unsigned int n,
                  std::int32_t* values)
{
    std::uint32_t s1 = state1, s2 = state2; // kept in registers whatever `values` points to
    for (unsigned int i = 0; i < n; ++i)
    {
        s1 = First::step(s1);
        s2 = Second::step(s2);
        values[i] = combine(s1, s2);
    }
    state1 = s1;
    state2 = s2;
}

#if defined(__SSE2__)

// Four lanes run through a quarter of a tile each. Two lanes of 64 bits make a register, so that
// products have room.

constexpr unsigned int laneCount = 4;
constexpr unsigned int laneLength = 32;
constexpr unsigned int tileLength = laneCount * laneLength;

template <class Generator>
class Lanes
{
public:
    /// The lanes before their first step: lane k is k * laneLength steps ahead.
    explicit Lanes(std::uint32_t state)
    {
        constexpr std::uint32_t ahead = Generator::getPower(laneLength);
        std::uint32_t starts[laneCount] = {state};
        for (unsigned int lane = 1; lane < laneCount; ++lane)
            starts[lane] = Generator::multiply(starts[lane - 1], ahead);
        _low = _mm_set_epi32(0, static_cast<int>(starts[1]), 0, static_cast<int>(starts[0]));
        _high = _mm_set_epi32(0, static_cast<int>(starts[3]), 0, static_cast<int>(starts[2]));
    }

    void step()
    {
        _low = step(_low);
        _high = step(_high);
    }

    /// The four states less the modulus, as 32-bit lanes, from -modulus to -1.
    __m128i getReducedLessModulus() const
    {
        const __m128i modulus = _mm_set1_epi32(static_cast<int>(Generator::modulus));
        const __m128i states = _mm_castps_si128(_mm_shuffle_ps(
            _mm_castsi128_ps(_low), _mm_castsi128_ps(_high), _MM_SHUFFLE(2, 0, 2, 0)));
        const __m128i less = _mm_sub_epi32(states, modulus);
        return _mm_sub_epi32(less, _mm_andnot_si128(_mm_srai_epi32(less, 31), modulus));
    }

    /// The last lane, which is the sequence's own state at the end of the tile.
    std::uint32_t getLast() const
    {
        return static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_srli_si128(_high, 8)));
    }

private:
    static __m128i step(__m128i states)
    {
        const __m128i product =
            _mm_mul_epu32(states, _mm_set1_epi32(static_cast<int>(Generator::multiplier)));
        const __m128i below = _mm_and_si128(product, _mm_set_epi32(0, 0x7FFFFFFF, 0, 0x7FFFFFFF));
        const __m128i above = _mm_mul_epu32(_mm_srli_epi64(product, 31),
                                            _mm_set1_epi32(static_cast<int>(Generator::fold)));
        return _mm_add_epi64(below, above);
    }

    __m128i _low;
    __m128i _high;
};

__m128i combine(const Lanes<First>& first, const Lanes<Second>& second)
{
    const __m128i reduced2 =
        _mm_add_epi32(second.getReducedLessModulus(), _mm_set1_epi32(Second::modulus));
    const __m128i sum = _mm_add_epi32(first.getReducedLessModulus(), reduced2);
    const __m128i isBelow1 = _mm_cmplt_epi32(sum, _mm_set1_epi32(1));
    return _mm_add_epi32(sum, _mm_and_si128(isBelow1, _mm_set1_epi32(First::modulus - 1)));
}

void fillTile(std::uint32_t& state1, std::uint32_t& state2, std::int32_t* values)
{
    Lanes<First> first(state1);
    Lanes<Second> second(state2);
    for (unsigned int i = 0; i < laneLength; i += laneCount)
    {
        __m128i rows[laneCount];
        for (__m128i& row : rows)
        {
            first.step();
            second.step();
            row = combine(first, second);
        }
        // Rows hold the lanes at one step; what is stored are the steps of one lane.
        const __m128i a = _mm_unpacklo_epi32(rows[0], rows[1]);
        const __m128i b = _mm_unpacklo_epi32(rows[2], rows[3]);
        const __m128i c = _mm_unpackhi_epi32(rows[0], rows[1]);
        const __m128i d = _mm_unpackhi_epi32(rows[2], rows[3]);
        const __m128i columns[] = {_mm_unpacklo_epi64(a, b), _mm_unpackhi_epi64(a, b),
                                   _mm_unpacklo_epi64(c, d), _mm_unpackhi_epi64(c, d)};
        for (unsigned int lane = 0; lane < laneCount; ++lane)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(values + lane * laneLength + i),
                             columns[lane]);
    }
    state1 = first.getLast();
    state2 = second.getLast();
}

#endif

} // namespace

void fill(std::uint32_t& state1, std::uint32_t& state2, unsigned int n, std::int32_t* values)
{
#if defined(__SSE2__)
    for (; n >= tileLength; n -= tileLength, values += tileLength)
        fillTile(state1, state2, values);
#endif
    fillStepwise(state1, state2, n, values);
}

} // namespace Kr::Lecuyer
