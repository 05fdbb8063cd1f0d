// Random numbers: uniform generators, low-discrepancy sequences, shapes and combinations.

#include "assertionCheck.h"

#include <base/rnAsymmetricalSeparableBiRng.h>
#include <base/rnEx.h>
#include <base/rnGaussianRng.h>
#include <base/rnHaltonBiRng.h>
#include <base/rnHammersleyBiRng.h>
#include <base/rnLecuyerUniformRng.h>
#include <base/rnMexicanHatRng.h>
#include <base/rnNiederreiterMultiRng.h>
#include <base/rnNumRecUniformRng.h>
#include <base/rnSeparableBiRng.h>
#include <base/rnSeparableMultiRng.h>
#include <base/rnStdEngineRng.h>
#include <base/rnStdUniformRng.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <random>
#include <vector>

namespace
{

using namespace Kr;

template <class T>
class RandomOf : public testing::Test
{
};
using FloatTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(RandomOf, FloatTypes, );

// --- uniform generators
// ---------------------------------------------------------------------------

/// The two states as whole numbers; the smallest non-negative residues.
struct LecuyerModel
{
    static constexpr std::int64_t m1 = 2147483563, m2 = 2147483399;
    std::int64_t s1, s2;

    std::int64_t step()
    {
        s1 = (s1 * 40014 % m1 + m1) % m1;
        s2 = s2 * 40692 % m2;
        const std::int64_t z = s1 + s2 - m1;
        return z < 1 ? z + m1 - 1 : z;
    }
};

TYPED_TEST(RandomOf, LecuyerIsItsModelInSinglesAndBlocks)
{
    using T = TypeParam;
    const bool isFloat = std::is_same_v<T, float>;
    for (const unsigned int seed : {99999U, 1U, 0U, 2147483562U, 2147483563U, 0x7FFFFFFFU,
                                    0x80000000U, 0xFFFFFFFFU, 4000000000U})
    {
        SCOPED_TRACE(seed);
        RnLecuyerUniformRng<T> single(7, seed), blocks(8, seed);
        LecuyerModel model{static_cast<std::int32_t>(seed), 55555};
        for (const unsigned int count : {1U, 127U, 128U, 129U, 5U, 3000U, 0U, 2U})
        {
            std::vector<T> samples(count + 1, T(-1));
            blocks.getSequence(count, samples.data());
            for (unsigned int i = 0; i < count; ++i)
            {
                const auto z = static_cast<double>(model.step());
                const T expected =
                    static_cast<T>(z * (isFloat ? 1. / 2147483648. : 1. / 2147483563.));
                ASSERT_EQ(samples[i], expected);
                ASSERT_EQ(single(), expected);
            }
            ASSERT_EQ(samples[count], T(-1)) << "written behind the end";
        }
    }
}

TEST(Lecuyer, SeedingSetsTheFirstStateToTheSecondSeed)
{
    RnLecuyerUniformRng<double> a, b(1, 99999), c(55555, 4);
    EXPECT_EQ(a(), b());
    EXPECT_NE(a(), c());
    a.restart(11, 12);
    EXPECT_EQ(a.getSeed1(), 11U);
    EXPECT_EQ(a.getSeed2(), 12U);
    const double first = a();
    a.restart(); // the second state goes on
    EXPECT_NE(a(), first);
}

TEST(Lecuyer, SkipsLikeStepsAndItsStreamsNeverMeet)
{
    for (const unsigned int steps : {0U, 1U, 2U, 1000U, 123457U})
    {
        RnLecuyerUniformRng<double> stepped, skipped;
        for (unsigned int i = 0; i < steps; ++i)
            stepped();
        skipped.skip(steps);
        EXPECT_EQ(stepped(), skipped()) << steps;
    }
    RnLecuyerUniformRng<double> halves, whole;
    halves.skip(1ULL << 62);
    halves.skip(1ULL << 62);
    whole.skip(1ULL << 63);
    EXPECT_EQ(halves(), whole());

    // Each multiplier generates all residues but 0: no power by (m - 1) / p is 1, for the primes p
    // of m - 1. So the pair's period is the least common multiple, which the streams' lengths fit
    // into.
    const auto power = [](std::uint64_t a, std::uint64_t n, std::uint64_t m)
    {
        std::uint64_t result = 1;
        for (; n != 0; n /= 2, a = a * a % m)
            result = n % 2 != 0 ? result * a % m : result;
        return result;
    };
    const std::uint64_t n1 = LecuyerModel::m1 - 1, n2 = LecuyerModel::m2 - 1;
    const std::vector<std::uint64_t> primes1 = {2, 3, 7, 631, 81031},
                                     primes2 = {2, 19, 31, 1019, 1789};
    ASSERT_EQ(n1, 2ULL * 3 * 7 * 631 * 81031);
    ASSERT_EQ(n2, 2ULL * 19 * 31 * 1019 * 1789);
    for (const std::uint64_t p : primes1)
        EXPECT_NE(power(40014, n1 / p, n1 + 1), 1U);
    for (const std::uint64_t p : primes2)
        EXPECT_NE(power(40692, n2 / p, n2 + 1), 1U);
    using Streams = RnLecuyerUniformRng<float>;
    EXPECT_LE(Streams::getStreamCount() * Streams::getStreamLength(), n1 / 2 * n2);

    RnLecuyerUniformRng<double> stream, first;
    stream.restartStream(2046);
    first.skip(2046ULL << 50);
    EXPECT_EQ(stream(), first());
    EXPECT_THROW(stream.restartStream(2047), ExInternalError);
}

TYPED_TEST(RandomOf, ShuffledGeneratorIsItsModelInSinglesAndBlocks)
{
    using T = TypeParam;
    for (const unsigned int seed : {0U, 1U, 1771875U, 0xFFFFFFFFU})
    {
        const auto next = [](std::uint64_t x) { return (x * 2416 + 374441) % 1771875; };
        const T rm = T(1) / T(1771875);
        std::uint64_t x = static_cast<std::uint32_t>(seed + 374441U) % 1771875, table[97];
        for (std::uint64_t& entry : table)
            entry = x = next(x);
        x = next(x);
        T y = static_cast<T>(x) * rm;
        RnNumRecUniformRng<T> rng(seed);
        rng();
        rng.restart(); // replays
        std::vector<T> samples;
        const unsigned int total = seed == 0 ? 1800000 : 10000; // all states once, and more
        for (unsigned int i = 0, count = 1; i < total; i += count)
        {
            count = count * 5 % 2003 + i % 3; // by turns, in lengths that fit nothing
            samples.resize(count + 1);
            rng.getSequence(count, samples.data());
            samples[count++] = rng();
            for (const T sample : samples)
            {
                const auto j = static_cast<unsigned int>(97. * static_cast<double>(y));
                y = static_cast<T>(table[j]) * rm;
                table[j] = x = next(x);
                ASSERT_EQ(sample, y);
                ASSERT_LT(y, T(1));
            }
        }
        EXPECT_EQ(rng.getSeed(), seed);
    }
    RnNumRecUniformRng<T> zero(0), standard;
    EXPECT_EQ(zero(), standard());
}

TYPED_TEST(RandomOf, RuntimeGeneratorIsScaledByItsMaximum)
{
    RnStdUniformRng<TypeParam> rng(5), other;
    std::srand(5);
    const auto expected = static_cast<TypeParam>(std::rand()) / static_cast<TypeParam>(RAND_MAX);
    rng.restart();
    EXPECT_EQ(other(), expected); // one generator for all
}

TYPED_TEST(RandomOf, UnitGeneratorsHaveTheirBoundsAndConveniences)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> a, b, c;
    RnVanDerCorputRng<T> d;
    RnUnitRng<T>* const all[] = {&a, &d};
    for (const RnUnitRng<T>* rng : all)
    {
        EXPECT_EQ(rng->getEfficientWidth(), T(1));
        EXPECT_EQ(rng->getEfficientMin(), T(0));
        EXPECT_EQ(rng->getEfficientMax(), T(1));
        EXPECT_EQ(rng->getEfficientFraction(), T(1));
        EXPECT_EQ(rng->getPdf(T(-0.1)), T(0));
        EXPECT_EQ(rng->getPdf(0), T(1));
        EXPECT_EQ(rng->getPdf(T(0.999)), T(1));
        EXPECT_EQ(rng->getPdf(1), T(0));
    }
    const T u = a();
    EXPECT_EQ(b(2, 5), 2 + u * 3);
    EXPECT_EQ(c(3), u * 3);
}

// --- low-discrepancy sequences
// --------------------------------------------------------------------

/// Digit by digit, as the sequence is defined.
template <class T>
T getRadicalInverse(unsigned int base, std::uint32_t n)
{
    const T inverse = static_cast<T>(1. / base);
    T value = 0;
    for (T factor = inverse; n != 0; factor *= inverse, n /= base)
        if (n % base != 0)
            value =
                static_cast<T>(static_cast<double>(value) + n % base * static_cast<double>(factor));
    return value;
}

TYPED_TEST(RandomOf, RadicalInverseIsTheSameBitsByEveryWay)
{
    using T = TypeParam;
    for (const unsigned int base :
         {2U, 3U, 5U, 7U, 10U, 16U, 255U, 256U, 257U, 65537U, 4294967295U})
        for (const std::uint32_t start :
             {0U, 1U, 1000U, 16777000U, 33554300U, 4000000000U, 4294966500U})
        {
            SCOPED_TRACE(testing::Message() << "base " << base << " from " << start);
            RnVanDerCorputRng<T> single(base), sequence(base);
            single.restart(start);
            sequence.restart(start);
            std::vector<T> samples(1500), block(1500);
            sequence.getSequence(1000, samples.data());
            sequence.getSequence(500, samples.data() + 1000);
            sequence.getBlock(start, 1500, block.data());
            EXPECT_EQ(sequence.getIndex(), start + 1500);
            for (std::uint32_t i = 0; i < 1500; ++i)
            {
                const T expected = getRadicalInverse<T>(base, start + 1 + i);
                ASSERT_EQ(samples[i], expected) << i;
                ASSERT_EQ(block[i], expected) << i;
                ASSERT_EQ(single(), expected) << i;
            }
        }
}

TEST(VanDerCorput, IsTheMirroredFractionWithinRounding)
{
    for (const unsigned int base : {2U, 3U, 5U, 7U})
    {
        RnVanDerCorputRng<double> rng(base);
        for (std::uint64_t n = 1; n < 100000; ++n)
        {
            std::uint64_t mirrored = 0, denominator = 1; // exact: below 2^53
            for (std::uint64_t rest = n; rest != 0; rest /= base, denominator *= base)
                mirrored = mirrored * base + rest % base;
            const double exact = static_cast<double>(mirrored) / static_cast<double>(denominator);
            ASSERT_NEAR(rng(), exact, base == 2 ? 0. : 4e-16) << n << " in base " << base;
        }
    }
    RnVanDerCorputRng<double> rng(3);
    EXPECT_EQ(rng.setBase(2), 3U);
    EXPECT_EQ(rng(), 0.5);
}

TYPED_TEST(RandomOf, HaltonDrawsEachCoordinateInItsBase)
{
    using T = TypeParam;
    RnHaltonMultiRng<T, 3> single, sequence;
    std::vector<T> x(700), y(700), z(700);
    T* array[] = {x.data(), y.data(), z.data()};
    sequence.getSequence(700, array);
    for (unsigned int i = 0; i < 700; ++i)
    {
        T point[3];
        single.getSample(point);
        ASSERT_EQ(point[0], getRadicalInverse<T>(2, i + 1));
        ASSERT_EQ(point[1], getRadicalInverse<T>(3, i + 1));
        ASSERT_EQ(point[2], getRadicalInverse<T>(5, i + 1));
        ASSERT_TRUE(point[0] == x[i] && point[1] == y[i] && point[2] == z[i]);
    }

    RnHaltonBiRng<T> pairs(5, 7);
    unsigned int p0 = 0, p1 = 0;
    pairs.getPrimeNumbers(p0, p1);
    EXPECT_TRUE(p0 == 5 && p1 == 7);
    pairs.restart(9);
    T a = 0, b = 0;
    pairs.getSample(a, b);
    EXPECT_EQ(a, getRadicalInverse<T>(5, 10));
    EXPECT_EQ(b, getRadicalInverse<T>(7, 10));
    EXPECT_EQ(pairs.getPdf(a, b), T(1));
    EXPECT_EQ(pairs.getPdf(a, 1), T(0));
}

TYPED_TEST(RandomOf, HammersleyWrapsOnlyItsGrid)
{
    using T = TypeParam;
    RnHammersleyMultiRng<T, 2> points(4);
    std::vector<T> x(4), y(4);
    T* array[] = {x.data(), y.data()};
    points.restart(2);
    for (unsigned int i = 0; i < 10; ++i)
    {
        T point[2];
        points.getSample(point);
        ASSERT_EQ(point[0], T((2 + i) % 4) / 4 + T(0.125));
        ASSERT_EQ(point[1], getRadicalInverse<T>(2, 3 + i));
    }
    points.getSequence(3, array); // from the grid's start, whatever the index, which stays
    EXPECT_EQ(x[0], T(0.125));
    EXPECT_EQ(y[0], getRadicalInverse<T>(2, 13));
    T point[2];
    points.getSample(point);
    EXPECT_EQ(point[0], T(0.125));
    EXPECT_EQ(point[1], getRadicalInverse<T>(2, 16));
}

/// The direction numbers of a polynomial over the field of two elements (bit k is the coefficient
/// of x^k), as Bratley, Fox and Niederreiter make them: the rows of the power q of the polynomial
/// are a sequence that obeys it, starting with as many zeros as the power before it has roots, then
/// ones.
std::vector<std::uint32_t> getDirections(std::uint64_t polynomial)
{
    const auto bit = [](std::uint64_t value, unsigned int k) { return value >> k & 1; };
    unsigned int degree = 0;
    while (polynomial >> (degree + 1) != 0)
        ++degree;
    std::vector<std::uint32_t> directions(31, 0);
    std::uint64_t power = 1;
    for (unsigned int row = 0; row < 31; ++row)
    {
        const unsigned int zeros = row / degree * degree;
        if (row % degree == 0)
        {
            std::uint64_t product = 0;
            for (unsigned int k = 0; k <= degree; ++k)
                product ^= bit(polynomial, k) != 0 ? power << k : 0;
            power = product;
        }
        std::vector<std::uint64_t> sequence(zeros, 0);
        sequence.resize(zeros + degree, 1);
        for (unsigned int n = 0; n < 31; ++n)
        {
            std::uint64_t sum = 0;
            for (unsigned int i = 0; i < zeros + degree; ++i)
                sum ^= bit(power, i) & sequence[n + i];
            sequence.push_back(sum);
        }
        for (unsigned int k = 0; k < 31; ++k)
            directions[k] |= static_cast<std::uint32_t>(sequence[k + row % degree]) << (30 - row);
    }
    return directions;
}

TYPED_TEST(RandomOf, NiederreiterComesFromItsPolynomials)
{
    using T = TypeParam;
    const std::vector<std::uint32_t> directions[] = {getDirections(2), getDirections(3),
                                                     getDirections(7), getDirections(11)};
    // The fifth start leads past the last of the 2^31 points, whose first coordinate rounds to 1.
    for (const std::uint32_t start : {0U, 1U, 31U, 1000000U, 2147479400U, 4294963100U})
    {
        RnNiederreiterMultiRng<T> single, sequence;
        single.restart(start);
        sequence.restart(start);
        std::vector<T> values(4 * 300);
        T* array[] = {&values[0], &values[300], &values[600], &values[900]};
        sequence.getSequence(300, array);
        EXPECT_EQ(sequence.getIndex(), start + 300);
        for (std::uint32_t i = 0; i < 300; ++i)
        {
            T point[4];
            single.getSample(point);
            for (unsigned int c = 0; c < 4; ++c)
            {
                std::uint32_t bits = 0;
                for (unsigned int k = 0; k < 31; ++k)
                    bits ^= (start + i + 4096) >> k & 1 ? directions[c][k] : 0;
                const auto exact = static_cast<T>(bits * 4.656612873077393e-10);
                ASSERT_EQ(point[c], exact < 1 ? exact : std::nextafter(T(1), T(0)));
                ASSERT_EQ(array[c][i], point[c]);
            }
        }
    }
}

TEST(Niederreiter, SequenceGoesThroughADerivedSample)
{
    struct Mirrored : RnNiederreiterMultiRng<double>
    {
        void getSample(double* const sample) override
        {
            RnNiederreiterMultiRng::getSample(sample);
            sample[0] = 1 - sample[0];
        }
    } mirrored;
    double values[4];
    double* array[] = {values, values + 1, values + 2, values + 3};
    mirrored.getSequence(1, array);
    EXPECT_EQ(values[0], 1 - 1. / 8192);
}

// --- shapes and combinations
// ----------------------------------------------------------------------

template <class T>
class Listed : public RnRng<T>
{
public:
    explicit Listed(std::vector<T> values)
        : _values(std::move(values))
    {
    }
    T operator()() override { return _values[_next++ % _values.size()]; }
    void getSample(T& x) override { x = (*this)(); }
    void getSequence(unsigned int n, T* array) override
    {
        for (unsigned int i = 0; i < n; ++i)
            array[i] = (*this)();
    }
    T getEfficientWidth() const override { return 2; }
    T getEfficientMin() const override { return -1; }
    T getEfficientMax() const override { return 1; }
    T getEfficientFraction() const override { return T(0.3); }
    T getPdf(T x) const override { return x * T(0.7); }
    void restart() override { _next = 0; }
    char const* getName() const override { return "Listed"; }
    std::size_t getTakenCount() const { return _next; }

private:
    std::vector<T> _values;
    std::size_t _next = 0;
};

TYPED_TEST(RandomOf, GaussianTakesPairsAndKeepsTheSecond)
{
    using T = TypeParam;
    Listed<T> source({1, T(0.5), T(0.625), T(0.75), T(0.5), T(0.25)}); // the first pair is rejected
    RnGaussianRng<T> rng(&source, 3, 2);
    const T s = T(0.0625) + T(0.25);
    const double f = std::sqrt(-2 * std::log(static_cast<double>(s)) / static_cast<double>(s));
    EXPECT_NEAR(rng(), 3 + 2 * 0.25 * f, std::numeric_limits<T>::epsilon() * 4);
    EXPECT_EQ(source.getTakenCount(), 4U);
    rng.restart(); // leaves what is kept
    EXPECT_NEAR(rng(), 3 + 2 * 0.5 * f, std::numeric_limits<T>::epsilon() * 8);
    EXPECT_EQ(source.getTakenCount(), 0U);

    EXPECT_EQ(rng.getEfficientMin(), T(-1));
    EXPECT_EQ(rng.getEfficientMax(), T(7));
    EXPECT_EQ(rng.getEfficientWidth(), T(8));
    EXPECT_EQ(rng.getEfficientFraction(), T(0.99993666));
    EXPECT_EQ(rng.getPdf(3), static_cast<T>(1 / (2 * std::sqrt(2 * 3.141592653589793))));
    EXPECT_NEAR(rng.getPdf(6), std::exp(-9. / 8) / (2 * std::sqrt(2 * std::acos(-1.))), 1e-8);

    Listed<T> centre({T(0.5)}), zero({0});
    RnGaussianRng<T> undefined(&centre), stuck(&zero);
    EXPECT_TRUE(std::isnan(undefined())); // the centre is accepted
    EXPECT_THROW(stuck(), RnEx::UnusableSource);
    T samples[10];
    EXPECT_THROW(stuck.getSequence(10, samples), RnEx::UnusableSource);

    const T nan = std::numeric_limits<T>::quiet_NaN();
    const std::vector<T> values = {T(0.5), T(0.5),  nan,     T(0.1),    1,
                                   T(0.5), T(0.75), T(0.25), T(0.5001), T(0.5)};
    Listed<T> singleSource(values), blockSource(values);
    RnGaussianRng<T> single(&singleSource), block(&blockSource);
    block.getSequence(10, samples);
    for (const T sample : samples)
    {
        const T expected = single();
        EXPECT_TRUE(sample == expected || (std::isnan(sample) && std::isnan(expected)));
    }
    EXPECT_EQ(blockSource.getTakenCount(), singleSource.getTakenCount());
}

TYPED_TEST(RandomOf, BlocksAreTheSinglesAndLeaveTheSourceAlike)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> source, blockSource;
    RnGaussianRng<T> gauss(&source, 1, 2), blockGauss(&blockSource, 1, 2);
    RnMexicanHatRng<T> hat(&source, 1, 3), blockHat(&blockSource, 1, 3);
    RnSeparableBiRng<T> pairs(&gauss), blockPairs(&blockGauss);
    RnAsymmetricalSeparableBiRng<T> mixed(&gauss, &gauss), blockMixed(&blockGauss, &blockGauss);
    RnSeparableMultiRng<T, 3> triples(&gauss), blockTriples(&blockGauss);
    std::vector<T> x(2000), y(2000), z(2000);
    T* array[] = {x.data(), y.data(), z.data()};
    for (const unsigned int count : {1U, 2U, 3U, 0U, 7U, 2000U, 5U, 1999U})
    {
        blockGauss.getSequence(count, x.data());
        for (unsigned int i = 0; i < count; ++i)
            ASSERT_EQ(x[i], gauss());
        blockHat.getSequence(count, x.data());
        for (unsigned int i = 0; i < count; ++i)
            ASSERT_EQ(x[i], hat());
        ASSERT_EQ(source(), blockSource()) << count;
        blockPairs.getSequence(count, x.data(), y.data());
        for (unsigned int i = 0; i < count; ++i)
        {
            T a = 0, b = 0;
            pairs.getSample(a, b);
            ASSERT_TRUE(a == x[i] && b == y[i]);
        }
        blockMixed.getSequence(count, x.data(), y.data());
        for (unsigned int i = 0; i < count; ++i)
        {
            T a = 0, b = 0;
            mixed.getSample(a, b);
            ASSERT_TRUE(a == x[i] && b == y[i]);
        }
        blockTriples.getSequence(count, array);
        for (unsigned int i = 0; i < count; ++i)
        {
            T sample[3];
            triples.getSample(sample);
            ASSERT_TRUE(sample[0] == x[i] && sample[1] == y[i] && sample[2] == z[i]);
        }
    }
}

TYPED_TEST(RandomOf, MexicanHatMapsTheSource)
{
    using T = TypeParam;
    Listed<T> source({0, T(0.125), T(0.5), T(0.875), 1});
    RnMexicanHatRng<T> rng(&source, 0, 4);
    for (const T expected : {T(-2), T(-1), T(0), T(1), T(2)})
        EXPECT_EQ(rng(), expected);
    EXPECT_EQ(rng.getPdf(0), T(0.5));
    EXPECT_EQ(rng.getPdf(1), T(0.25));
    EXPECT_EQ(rng.getPdf(2), T(0));
    EXPECT_EQ(rng.getPdf(5), T(0));
    EXPECT_EQ(rng.getEfficientWidth(), T(4));
    EXPECT_EQ(rng.getEfficientMin(), T(-2));
    EXPECT_EQ(rng.getEfficientMax(), T(2));
}

TYPED_TEST(RandomOf, CombinationsAnswerForTheirSources)
{
    using T = TypeParam;
    Listed<T> source({T(0.1), T(0.2), T(0.3), T(0.4)});
    RnLecuyerUniformRng<T> uniform;
    RnSeparableBiRng<T> pair(&source);
    T a = 0, b = 0;
    pair.getSample(a, b);
    EXPECT_TRUE(a == T(0.1) && b == T(0.2));
    pair.getSample(a, b);
    EXPECT_TRUE(a == T(0.3) && b == T(0.4));
    EXPECT_EQ(pair.getEfficientFraction(), T(0.3) * T(0.3));
    EXPECT_EQ(pair.getPdf(2, 3), (2 * T(0.7)) * (3 * T(0.7)));
    EXPECT_EQ(pair.getRng(), &source);
    RnAsymmetricalSeparableBiRng<T> mixed(&source, &uniform);
    EXPECT_EQ(mixed.getEfficientFraction(), T(0.3));
    EXPECT_EQ(mixed.getPdf(2, T(0.5)), 2 * T(0.7));
    mixed.getEfficientMin(a, b);
    EXPECT_TRUE(a == T(-1) && b == T(0));
    EXPECT_EQ(mixed.getRng1(), &uniform);
    RnSeparableMultiRng<T, 3> triple(&source);
    EXPECT_EQ(triple.getEfficientFraction(),
              static_cast<T>(std::pow(static_cast<long double>(T(0.3)), 3.L)));
    T x[] = {1, 2, 3};
    EXPECT_EQ(triple.getPdf(x), T(0.7) * (2 * T(0.7)) * (3 * T(0.7)));
    pair.restart();
    EXPECT_EQ(source.getTakenCount(), 0U);
}

// --- misuse
// ---------------------------------------------------------------------------------------

TYPED_TEST(RandomOf, MisuseFailsItsCheck)
{
    using T = TypeParam;
    const T inf = std::numeric_limits<T>::infinity(), nan = std::numeric_limits<T>::quiet_NaN();
    RnLecuyerUniformRng<T> uniform;
    RnStdEngineRng<T, std::minstd_rand> engine;
    RnVanDerCorputRng<T> inverse;
    RnHaltonMultiRng<T, 2> halton;
    RnHammersleyMultiRng<T, 2> hammersley(4);
    RnNiederreiterMultiRng<T> niederreiter;
    T values[8];
    T* array[] = {values, values};
    T* nullArray[] = {nullptr, nullptr};
    struct
    {
        const char* expression;
        const char* file;
        std::function<void()> action;
    } const cases[] = {
        {"_uniRng", "rnGaussianRng.imp", [&] { RnGaussianRng<T>(nullptr, 0, 0); }},
        {"_sigma > 0", "rnGaussianRng.imp", [&] { RnGaussianRng<T>(&uniform, 0, 0); }},
        {"_sigma > 0", "rnGaussianRng.imp", [&] { RnGaussianRng<T>(&uniform, 0, -1); }},
        {"_sigma > 0", "rnGaussianRng.imp", [&] { RnGaussianRng<T>(&uniform, 0, nan); }},
        {"FloatUtil::isfinite(_sigma)", "rnGaussianRng.imp",
         [&] { RnGaussianRng<T>(&uniform, 0, inf); }},
        {"FloatUtil::isfinite(_mean)", "rnGaussianRng.imp",
         [&] { RnGaussianRng<T>(&uniform, nan, 1); }},
        {"rng != 0", "rnMexicanHatRng.imp", [&] { RnMexicanHatRng<T>(nullptr, 0, 0); }},
        {"_halfwidth > 0", "rnMexicanHatRng.imp", [&] { RnMexicanHatRng<T>(&uniform, 0, 0); }},
        {"_halfwidth > 0", "rnMexicanHatRng.imp",
         [&] { RnMexicanHatRng<T>(&uniform, 0, std::numeric_limits<T>::denorm_min()); }},
        {"_halfwidth > 0", "rnMexicanHatRng.imp", [&] { RnMexicanHatRng<T>(&uniform, 0, nan); }},
        {"_halfwidth > 0", "rnMexicanHatRng.imp", [&] { RnMexicanHatRng<T>(&uniform, 0, -1); }},
        {"FloatUtil::isfinite(_halfwidth)", "rnMexicanHatRng.imp",
         [&] { RnMexicanHatRng<T>(&uniform, 0, inf); }},
        {"FloatUtil::isfinite(_centre)", "rnMexicanHatRng.imp",
         [&] { RnMexicanHatRng<T>(&uniform, inf, 1); }},
        {"array != nullptr || n == 0", "rnLecuyerUniformRng",
         [&] { uniform.getSequence(1, nullptr); }},
        {"array != nullptr || n == 0", "rnStdEngineRng", [&] { engine.getSequence(1, nullptr); }},
        {"_uniRng", "rnSeparableBiRng.imp", [&] { RnSeparableBiRng<T>(nullptr); }},
        {"_uniRng", "rnAsymmetricalSeparableBiRng.imp",
         [&] { RnAsymmetricalSeparableBiRng<T>(&uniform, nullptr); }},
        {"_uniRng", "rnSeparableMultiRng.imp", [&] { RnSeparableMultiRng<T, 3>(nullptr); }},
        {"array", "rnVanDerCorputRng.imp", [&] { inverse.getSequence(0, nullptr); }},
        {"array", "rnHaltonMultiRng.imp", [&] { halton.getSequence(1, nullptr); }},
        {"array", "rnVanDerCorputRng.imp", [&] { halton.getSequence(1, nullArray); }},
        {"array", "rnHammersleyMultiRng.imp", [&] { hammersley.getSequence(9, nullptr); }},
        {"n <= _length", "rnHammersleyMultiRng.imp", [&] { hammersley.getSequence(5, array); }},
        {"_length > 0", "rnHammersleyMultiRng.imp", [&] { RnHammersleyBiRng<T>(0); }},
        {"array", "rnNiederreiterMultiRng", [&] { niederreiter.getSequence(0, nullptr); }},
    };
    for (const auto& c : cases)
        expectAssertion(c.expression, (std::string("src/base/") + c.file).c_str(), anyLine,
                        c.action);
}

} // namespace
