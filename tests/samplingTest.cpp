// Random numbers: distributions, directions, histograms, scrambling and adaptors; digests of all.

#include <base/rnAsymmetricalSeparableBiRng.h>
#include <base/rnBitGenerator.h>
#include <base/rnDirectionMultiRng.h>
#include <base/rnEx.h>
#include <base/rnGaussianRng.h>
#include <base/rnHaltonBiRng.h>
#include <base/rnHammersleyBiRng.h>
#include <base/rnHistogramRng.h>
#include <base/rnLecuyerUniformRng.h>
#include <base/rnMexicanHatRng.h>
#include <base/rnNiederreiterMultiRng.h>
#include <base/rnNumRecUniformRng.h>
#include <base/rnScrambledRng.h>
#include <base/rnSeparableBiRng.h>
#include <base/rnSeparableMultiRng.h>
#include <base/rnStdEngineRng.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace Kr;

template <class T>
class SamplingOf : public testing::Test
{
};
using FloatTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(SamplingOf, FloatTypes, );

const double pi = std::acos(-1.);
const float lampWeights[] = {1, 0, 4, 0.5F, 0, 2.5F};

/// Against the expected counts; its square root scale is five deviations.
void expectCounts(const std::vector<double>& counts, const std::vector<double>& expected)
{
    double chi2 = 0, freedom = -1;
    for (std::size_t i = 0; i < counts.size(); ++i)
    {
        if (expected[i] == 0)
        {
            ASSERT_EQ(counts[i], 0) << i;
            continue;
        }
        chi2 += (counts[i] - expected[i]) * (counts[i] - expected[i]) / expected[i];
        ++freedom;
    }
    EXPECT_LT(chi2, freedom + 5 * std::sqrt(2 * freedom));
}

// --- distributions
// --------------------------------------------------------------------------------

double getLampCumulative(double x)
{
    double sum = 0;
    for (int i = 0; i < 6; ++i)
        sum += lampWeights[i] * std::clamp(x - i, 0., 1.);
    return sum / 8;
}

TYPED_TEST(SamplingOf, SamplesFollowTheirDistribution)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> uniform;
    RnNumRecUniformRng<T> shuffled;
    RnStdEngineRng<T, std::minstd_rand> engine;
    RnStdEngineRng<T, std::ranlux48> wideEngine;
    RnScrambledVanDerCorputRng<T> scrambled(3);
    RnGaussianRng<T> gaussian(&uniform, 1, 2), gaussianShuffled(&shuffled);
    RnMexicanHatRng<T> hat(&uniform, 1, 4);
    const std::vector<T> weights(std::begin(lampWeights), std::end(lampWeights));
    const RnHistogram<T> lamp(0, 6, 6, weights.data());
    RnHistogramRng<T> alias(&uniform, lamp), inverse(&uniform, lamp, RnHistogramRng<T>::Inverse);
    const auto getUnit = [](double x) { return x; };
    const auto getHat = [](double x)
    { return x < 1 ? (x + 1) * (x + 1) / 8 : 1 - (3 - x) * (3 - x) / 8; };
    struct
    {
        const char* name;
        RnRng<T>* rng;
        std::function<double(double)> cumulative;
    } const cases[] = {
        {"combined", &uniform, getUnit},
        {"shuffled", &shuffled, getUnit},
        {"engine", &engine, getUnit},
        {"48 bits", &wideEngine, getUnit},
        {"scrambled", &scrambled, getUnit},
        {"gaussian", &gaussian, [](double x) { return std::erfc((1 - x) / std::sqrt(8.)) / 2; }},
        {"gaussian 2", &gaussianShuffled,
         [](double x) { return std::erfc(-x / std::sqrt(2.)) / 2; }},
        {"hat", &hat, getHat},
        {"alias", &alias, getLampCumulative},
        {"inverse", &inverse, getLampCumulative},
    };
    constexpr int count = 200000;
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.name);
        std::vector<T> samples(count);
        c.rng->getSequence(count, samples.data());
        std::sort(samples.begin(), samples.end());
        double distance = 0; // Kolmogorov and Smirnov's
        for (int i = 0; i < count; ++i)
            distance = std::max(distance, std::fabs(c.cumulative(samples[i]) - (i + 0.5) / count));
        EXPECT_LT(distance * std::sqrt(count), 1.95); // passes 999 times in 1000
        for (int i = 0; i < count; i += 97)
            ASSERT_GT(c.rng->getPdf(samples[i]), 0) << samples[i];
        double mass = 0; // of what is reported
        const double min = c.rng->getEfficientMin(), width = c.rng->getEfficientWidth();
        for (int i = 0; i < 60000; ++i)
            mass += c.rng->getPdf(static_cast<T>(min + width * (i + 0.5) / 60000)) * width / 60000;
        EXPECT_NEAR(mass, c.cumulative(min + width) - c.cumulative(min), 2e-5);
    }
}

TEST(Gaussian, MassOfFourDeviationsIsTheFraction)
{
    RnLecuyerUniformRng<double> uniform;
    RnGaussianRng<double> rng(&uniform, 3, 0.5);
    double mass = 0;
    for (int i = 0; i < 100000; ++i)
        mass += rng.getPdf(1 + 4 * (i + 0.5) / 100000) * 4 / 100000;
    EXPECT_NEAR(mass, rng.getEfficientFraction(), 1e-8);
}

// --- directions
// -----------------------------------------------------------------------------------

TYPED_TEST(SamplingOf, DirectionsFollowTheirDensity)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> uniform;
    RnSeparableBiRng<T> square(&uniform);
    const std::shared_ptr<RnDirectionMultiRng<T>> all[] = {
        std::make_shared<RnSphereMultiRng<T>>(&square),
        std::make_shared<RnHemisphereMultiRng<T>>(&square),
        std::make_shared<RnCosineHemisphereMultiRng<T>>(&square),
        std::make_shared<RnConeMultiRng<T>>(&square, T(0.4)),
        std::make_shared<RnConeMultiRng<T>>(&square, T(2.5)),
        std::make_shared<RnConeMultiRng<T>>(&square, T(pi))};
    constexpr int count = 100000, rows = 20, columns = 8, steps = 400;
    for (const auto& rng : all)
    {
        SCOPED_TRACE(rng->getName());
        std::vector<T> x(count), y(count), z(count);
        T* array[] = {x.data(), y.data(), z.data()};
        rng->getSequence(count, array);
        T min[3], max[3];
        rng->getEfficientMin(min);
        rng->getEfficientMax(max);
        const double bottom = min[2], height = 1 - bottom;
        std::vector<double> counts(rows * columns), expected(rows * columns);
        for (int i = 0; i < count; ++i)
        {
            T direction[] = {x[i], y[i], z[i]};
            ASSERT_NEAR(std::hypot(std::hypot(x[i], y[i]), z[i]), 1,
                        std::numeric_limits<T>::epsilon() * 2);
            ASSERT_GT(rng->getPdf(direction), 0);
            for (int d = 0; d < 3; ++d)
                ASSERT_TRUE(min[d] <= direction[d] && direction[d] <= max[d]) << direction[d];
            const int row = std::min(static_cast<int>((z[i] - bottom) / height * rows), rows - 1);
            const double turn = std::atan2(y[i], x[i]) / (2 * pi);
            const int column =
                std::min(static_cast<int>((turn < 0 ? turn + 1 : turn) * columns), columns - 1);
            ++counts[static_cast<std::size_t>(row * columns + column)];
        }
        double mass = 0; // per steradian, over the whole sphere
        for (int i = 0; i < rows * columns * steps; ++i)
        {
            const double stepZ = bottom + height * (i % (rows * steps) + 0.5) / (rows * steps);
            T direction[] = {T(std::sqrt(1 - stepZ * stepZ)), 0, T(stepZ)};
            const double share =
                rng->getPdf(direction) * height / (rows * steps) * 2 * pi / columns;
            expected[static_cast<std::size_t>(i % (rows * steps) / steps * columns +
                                              i / (rows * steps))] += share * count;
            mass += share;
        }
        EXPECT_NEAR(mass, 1, 1e-4);
        expectCounts(counts, expected);
        T below[] = {0, 0, -1};
        EXPECT_EQ(rng->getPdf(below) > 0, bottom <= -1);
    }
}

/// Turned directions are those around +z, seen in the frame; the density and the box turn with
/// them.
TYPED_TEST(SamplingOf, DirectionsTurnWithTheirFrame)
{
    using T = TypeParam;
    const T eps = std::numeric_limits<T>::epsilon();
    const T axes[][3] = {{0, 3, 4}, {1, 0, 0},  {T(-0.3), T(0.2), T(-7)},
                         {0, 0, 2}, {0, 0, -1}, {std::numeric_limits<T>::max(), 1, -1}};
    for (const T(&axis)[3] : axes)
        for (const double angle : {0.1, 1., 2., pi})
        {
            RnHaltonBiRng<T> points, turnedPoints;
            RnConeMultiRng<T> straight(&points, static_cast<T>(angle));
            RnConeMultiRng<T> turned(&turnedPoints, static_cast<T>(angle));
            turned.setAxis(axis);
            T unit[3], min[3], max[3], lowest[] = {1, 1, 1}, highest[] = {-1, -1, -1};
            turned.getAxis(unit);
            turned.getEfficientMin(min);
            turned.getEfficientMax(max);
            for (int i = 0; i < 20000; ++i)
            {
                T from[3], to[3];
                straight.getSample(from);
                turned.getSample(to);
                ASSERT_NEAR(std::hypot(std::hypot(to[0], to[1]), to[2]), 1, 2 * eps);
                ASSERT_NEAR(to[0] * unit[0] + to[1] * unit[1] + to[2] * unit[2], from[2], 4 * eps);
                ASSERT_EQ(turned.getPdf(to), straight.getPdf(from));
                for (int d = 0; d < 3; ++d)
                {
                    lowest[d] = std::min(lowest[d], to[d]);
                    highest[d] = std::max(highest[d], to[d]);
                    ASSERT_TRUE(min[d] - eps <= to[d] && to[d] <= max[d] + eps);
                    ASSERT_TRUE(axis[2] != 2 || to[d] == from[d]);
                }
            }
            for (int d = 0; d < 3; ++d) // the box is no larger than need be
            {
                EXPECT_NEAR(lowest[d], min[d], 0.01);
                EXPECT_NEAR(highest[d], max[d], 0.01);
            }
        }
    RnVanDerCorputRng<T> steps; // 1/2, 1/4: the cosine sqrt(1/2), a quarter around
    RnSeparableBiRng<T> square(&steps);
    RnCosineHemisphereMultiRng<T> bounce(&square);
    const T x[] = {0, 0, -1}, y[] = {0, 1, 0}, z[] = {1, 0, 0};
    bounce.setFrame(x, y, z);
    T direction[3];
    bounce.getSample(direction);
    EXPECT_NEAR(direction[0], std::sqrt(0.5), eps);
    EXPECT_NEAR(direction[1], std::sqrt(0.5), eps);
    EXPECT_NEAR(direction[2], 0, eps);
    EXPECT_NEAR(bounce.getPdf(direction), std::sqrt(0.5) / pi, eps);
    direction[0] = -direction[0];
    EXPECT_EQ(bounce.getPdf(direction), 0);
}

TEST(Directions, RefuseNullAndAnglesThatAreNone)
{
    RnHaltonBiRng<double> points;
    EXPECT_THROW(RnSphereMultiRng<double>(nullptr), ExInternalError);
    for (const double angle :
         {0., -1., 3.15, std::nan(""), std::numeric_limits<double>::infinity()})
    {
        EXPECT_THROW(RnConeMultiRng<double>(&points, angle), ExInternalError) << angle;
        RnSphereMultiRng<double> sphere(&points);
        const double axis[] = {0, std::isfinite(angle) ? 0 : angle, 0};
        EXPECT_THROW(sphere.setAxis(axis), ExInternalError) << axis[1];
    }
}

// --- histograms
// -----------------------------------------------------------------------------------

template <class T>
struct Constant : RnStdEngineRngBase<T>
{
    T value = 0;
    T operator()() override { return value; }
    void getSequence(unsigned int n, T* array) override { std::fill_n(array, n, value); }
    void restart() override {}
};

TYPED_TEST(SamplingOf, HistogramsNeverGiveAnEmptyBin)
{
    using T = TypeParam;
    Constant<T> source;
    const T weightLists[][4] = {
        {0, 0, 0, 1}, {1, 0, 0, 0}, {0, T(0.1), T(0.7), 0}, {T(1e-15), 0, T(1e15), 0}};
    for (const auto& weights : weightLists)
    {
        const RnHistogram<T> histogram(-1, 7, 4, weights);
        const RnBins<T> column(T(1e6), T(1e6) + 1, 1);
        const RnBiHistogram<T> pairs(histogram.getBins(), column, weights);
        RnHistogramRng<T> alias(&source, histogram),
            inverse(&source, histogram, RnHistogramRng<T>::Inverse);
        RnHistogramBiRng<T> aliasPairs(&source, pairs);
        T previous = -1;
        for (const double u :
             {-1., 0., 1e-9, 0.2499999, 0.25, 0.5, 0.74, 0.75, 0.99999999, 1., 2., std::nan("")})
        {
            source.value = static_cast<T>(u);
            for (RnRng<T>* rng : {static_cast<RnRng<T>*>(&alias), static_cast<RnRng<T>*>(&inverse)})
                ASSERT_GT(rng->getPdf((*rng)()), 0) << u;
            T x = 0, y = 0;
            aliasPairs.getSample(x, y);
            ASSERT_GT(aliasPairs.getPdf(x, y), 0) << u;
            if (!std::isnan(u))
            {
                ASSERT_LE(previous, inverse.getInverse(source.value)) << u;
                previous = inverse.getInverse(source.value);
                ASSERT_NEAR(inverse.getCumulative(previous), std::clamp(source.value, T(0), T(1)),
                            3e-7)
                    << u;
            }
        }
    }
}

TYPED_TEST(SamplingOf, DirectionsAndBitsTakeAnySourceAtItsEndsAndBeyond)
{
    using T = TypeParam;
    Constant<T> source;
    RnSeparableBiRng<T> square(&source);
    RnConeMultiRng<T> cone(&square, T(0.7));
    RnCosineHemisphereMultiRng<T> bounce(&square);
    RnBitGenerator<T> bits(&source);
    for (const double u : {-1., 0., 1., 2., std::nan("")})
    {
        source.value = static_cast<T>(u);
        T direction[3];
        cone.getSample(direction);
        EXPECT_GT(cone.getPdf(direction), 0) << u;
        EXPECT_NEAR(direction[2], u >= 1 ? std::cos(T(0.7)) : 1, 1e-7) << u;
        bounce.getSample(direction);
        EXPECT_EQ(direction[2], u >= 1 ? 0 : 1) << u;
        EXPECT_EQ(bits(), u >= 1 ? 0xFFFFFFFFU : 0U) << u;
    }
}

TEST(Histogram, MillionBinsAreDrawnByTheirWeights)
{
    constexpr unsigned int binCount = 1000000;
    std::vector<float> weights(binCount);
    for (unsigned int i = 0; i < binCount; ++i)
        weights[i] = static_cast<float>(i % 7 * (i / 10000 % 5));
    const RnHistogram<float> histogram(0, 1, binCount, weights.data());
    RnLecuyerUniformRng<float> uniform;
    RnHistogramRng<float> rng(&uniform, histogram);
    RnHistogram<float> drawn(0, 1, 700);
    drawn.fill(rng, 400000);
    std::vector<double> expected = histogram.getResampled(700).getWeights();
    for (double& weight : expected)
        weight *= 400000 / histogram.getTotal();
    expectCounts(drawn.getWeights(), expected);
}

TYPED_TEST(SamplingOf, PairsOfAHistogramFollowItByBothWays)
{
    using T = TypeParam;
    const T weights[] = {1, 2, 0, 0, 0, 0, 3, 0, 6};
    const RnBiHistogram<T> histogram(RnBins<T>(0, 3, 3), RnBins<T>(-6, 0, 3), weights);
    RnLecuyerUniformRng<T> uniform;
    RnHaltonBiRng<T> points;
    RnHistogramBiRng<T> alias(&uniform, histogram), inverse(&points, histogram);
    for (RnHistogramBiRng<T>* rng : {&alias, &inverse})
    {
        RnBiHistogram<T> drawn(histogram.getXBins(), histogram.getYBins());
        drawn.fill(*rng, 120000);
        std::vector<double> expected = histogram.getWeights();
        for (double& weight : expected)
            weight *= 10000;
        expectCounts(drawn.getWeights(), expected);
        EXPECT_EQ(drawn.getOutside(), 0);
    }
    EXPECT_EQ(alias.getPdf(T(2.5), T(-0.1)), T(0.25)); // a half of all, in a bin of 1 by 2
    EXPECT_EQ(histogram.getPdf(T(2.5), T(-0.1)), T(0.25));
    EXPECT_EQ(alias.getPdf(T(2.5), T(0.1)), T(0));
}

TYPED_TEST(SamplingOf, BlocksOfHistogramsAndDirectionsAreTheSingles)
{
    using T = TypeParam;
    std::vector<T> weights(5000, T(0.5)), x(700), y(700), z(700);
    RnLecuyerUniformRng<T>(3, 4).getSequence(2500, weights.data());
    RnLecuyerUniformRng<T> uniform, blockUniform;
    for (const unsigned int bins : {5000U, 50U})
    {
        const RnHistogram<T> line(0, 1, bins, weights.data());
        const RnBiHistogram<T> plane(RnBins<T>(0, 1, bins / 50), RnBins<T>(0, 1, 50),
                                     weights.data());
        RnHistogramRng<T> single(&uniform, line), block(&blockUniform, line);
        RnHistogramBiRng<T> pair(&uniform, plane), blockPair(&blockUniform, plane);
        RnCosineHemisphereMultiRng<T> direction(&pair), blockDirection(&blockPair);
        T* array[] = {x.data(), y.data(), z.data()};
        block.getSequence(700, z.data());
        for (unsigned int i = 0; i < 700; ++i)
            ASSERT_EQ(z[i], single());
        blockDirection.getSequence(700, array);
        for (unsigned int i = 0; i < 700; ++i)
        {
            T sample[3];
            direction.getSample(sample);
            ASSERT_TRUE(sample[0] == x[i] && sample[1] == y[i] && sample[2] == z[i]) << i;
        }
        ASSERT_EQ(uniform(), blockUniform());
    }
}

TEST(Histogram, ResamplingKeepsTheWeight)
{
    const RnHistogram<double> coarse(0, 6, 3, std::vector<double>{6, 0, 3}.data());
    EXPECT_EQ(coarse.getResampled(6).getWeights(), (std::vector<double>{3, 3, 0, 0, 1.5, 1.5}));
    EXPECT_EQ(coarse.getResampled(2).getWeights(), (std::vector<double>{6, 3}));
    EXPECT_EQ(coarse.getResampled(4).getWeights(), (std::vector<double>{4.5, 1.5, 0.75, 2.25}));
    const RnBiHistogram<double> square(RnBins<double>(0, 1, 2), RnBins<double>(0, 1, 2),
                                       std::vector<double>{4, 0, 0, 8}.data());
    EXPECT_EQ(square.getResampled(1, 4).getWeights(), (std::vector<double>{2, 2, 4, 4}));
    RnHistogram<double> outside(0, 1, 1);
    outside.add(2);
    outside.add(std::nan(""), 3);
    EXPECT_EQ(outside.getOutside(), 4);
    EXPECT_EQ(outside.getPdf(0.5), 0);
}

TEST(Histogram, PicturesAreWhole)
{
    const RnBiHistogram<double> square(RnBins<double>(0, 1, 3), RnBins<double>(0, 1, 2),
                                       std::vector<double>{4, 0, 0, 1, 1, 1}.data());
    std::ostringstream pixels, scene, bars;
    square.writePicture(pixels);
    const std::string bytes = pixels.str();
    ASSERT_EQ(bytes.size(), 54U + 1024 + 2 * 4);
    EXPECT_EQ(bytes.substr(0, 6), std::string("BM\x3E\x04\0\0", 6));
    EXPECT_EQ(bytes.substr(1078), std::string("\xFF\0\0\0\x80\x80\x80\0", 8));
    square.writeScene(scene);
    const std::string text = scene.str();
    EXPECT_EQ(std::count(text.begin(), text.end(), 'v'), 4 * 8);
    EXPECT_EQ(std::count(text.begin(), text.end(), 'f'), 4 * 6);
    EXPECT_NE(text.find("v 0.333333333 0.5 1\n"), std::string::npos) << text;
    RnHistogram<float>(0, 1, 6, lampWeights).writePicture(bars);
    EXPECT_NE(bars.str().find("<rect x=\"341\" y=\"0\" width=\"170\" height=\"512\"/>"),
              std::string::npos)
        << bars.str();
}

TEST(Histogram, RefusesWhatCannotBeSampled)
{
    const double inf = std::numeric_limits<double>::infinity();
    RnLecuyerUniformRng<double> uniform;
    const auto build = [](double min, double max, unsigned int count, std::vector<double> weights)
    { RnHistogram<double>(min, max, count, weights.data()); };
    struct
    {
        const char* reason;
        std::function<void()> action;
    } const cases[] = {
        {"all 2 weights are 0.",
         [&] {
             build(0, 1, 2, {0, 0});
         }},
        {"weight -1 is negative or not finite.",
         [&] {
             build(0, 1, 2, {1, -1});
         }},
        {"weight inf is negative or not finite.",
         [&] {
             build(0, 1, 2, {1, inf});
         }},
        {"the weights are null.", [&] { RnHistogram<double>(0, 1, 2, nullptr); }},
        {"there are 0 bins, and may be 1 to 268435456.", [&] { build(0, 1, 0, {1}); }},
        {"the range from 1 to 1 is empty or not finite.", [&] { build(1, 1, 1, {1}); }},
        {"the range from 0 to inf is empty or not finite.", [&] { build(0, inf, 1, {1}); }},
        {"1000 bins from 1e+08 to 1.00001e+08 are too narrow.",
         [&] { RnBins<float>(1e8F, 1.00001e8F, 1000); }},
        {"there is no weight, or too little.",
         [&] { RnHistogramRng<double>(&uniform, RnHistogram<double>(0, 1, 2)); }},
    };
    for (const auto& c : cases)
        try
        {
            c.action();
            ADD_FAILURE() << "passed: " << c.reason;
        }
        catch (const RnEx::BadHistogram& error)
        {
            EXPECT_EQ(error.getReason(), std::string("Histogram: ") + c.reason);
        }
    build(0, 1, 3, {1.7e308, 1.7e308, 1.7e308}); // the sum alone is too great
    EXPECT_THROW(RnHistogramRng<double>(nullptr, RnHistogram<double>(0, 1, 2)), ExInternalError);
}

// --- any place of a sequence
// ------------------------------------------------------------------------------------------------

template <class T>
void getPoint(RnRng<T>& rng, T* point)
{
    rng.getSample(*point);
}
template <class T>
void getPoint(RnBiRng<T>& rng, T* point)
{
    rng.getSample(point[0], point[1]);
}
template <class T, unsigned int N>
void getPoint(RnMultiRng<T, N>& rng, T* point)
{
    rng.getSample(point);
}

/// A block from any index is what stepping from there gives, leaves the generator alone and writes
/// nothing behind its end; a sequence is a block from the generator's index, and moves it.
template <unsigned int N, class T, class Rng, class GetBlock, class GetSequence>
void expectAnyBlock(Rng rng, GetBlock getBlock, GetSequence getSequence)
{
    SCOPED_TRACE(rng.getName());
    for (const unsigned int index : {0U, 1U, 77U, 4096U, 16777000U, 2147479000U, 4294963100U})
        for (const unsigned int count : {0U, 1U, 3U, 31U, 64U, 127U, 300U})
        {
            std::vector<T> block(N * (count + 1), T(-1)), sequence(N * (count + 1), T(-1));
            T *blocks[N], *sequences[N];
            for (unsigned int c = 0; c < N; ++c)
            {
                blocks[c] = &block[c * (count + 1)];
                sequences[c] = &sequence[c * (count + 1)];
            }
            rng.restart(index);
            getBlock(rng, index, count, blocks);
            Rng stepped = rng;
            getSequence(rng, count, sequences);
            for (unsigned int i = 0; i <= count; ++i)
            {
                T point[N];
                if (i < count)
                    getPoint(stepped, point);
                for (unsigned int c = 0; c < N; ++c)
                {
                    ASSERT_EQ(blocks[c][i], i < count ? point[c] : T(-1)) << index << ", " << i;
                    ASSERT_EQ(sequences[c][i], blocks[c][i]);
                }
            }
            T next[N], nextStepped[N];
            getPoint(rng, next);
            getPoint(stepped, nextStepped);
            ASSERT_TRUE(std::equal(next, next + N, nextStepped));
        }
}

TYPED_TEST(SamplingOf, BlocksOfSequencesAreTheirStepsFromAnyIndex)
{
    using T = TypeParam;
    const auto one = [](const auto& rng, unsigned int index, unsigned int n, T** a)
    { rng.getBlock(index, n, a[0]); };
    const auto two = [](const auto& rng, unsigned int index, unsigned int n, T** a)
    { rng.getBlock(index, n, a[0], a[1]); };
    const auto many = [](const auto& rng, unsigned int index, unsigned int n, T** a)
    { rng.getBlock(index, n, a); };
    const auto sequenceOfOne = [](auto& rng, unsigned int n, T** a) { rng.getSequence(n, a[0]); };
    const auto sequenceOfTwo = [](auto& rng, unsigned int n, T** a)
    { rng.getSequence(n, a[0], a[1]); };
    const auto sequenceOfMany = [](auto& rng, unsigned int n, T** a) { rng.getSequence(n, a); };
    // A sequence of Hammersley's starts with the grid: its steps stand in.
    const auto stepsOfTwo = [](auto& rng, unsigned int n, T** a)
    {
        for (unsigned int i = 0; i < n; ++i)
            rng.getSample(a[0][i], a[1][i]);
    };
    expectAnyBlock<1, T>(RnScrambledVanDerCorputRng<T>(5), one, sequenceOfOne);
    expectAnyBlock<2, T>(RnHaltonBiRng<T>(5, 7), two, sequenceOfTwo);
    expectAnyBlock<2, T>(RnHammersleyBiRng<T>(77), two, stepsOfTwo);
    expectAnyBlock<3, T>(RnHaltonMultiRng<T, 3>(), many, sequenceOfMany);
    expectAnyBlock<4, T>(RnNiederreiterMultiRng<T>(), many, sequenceOfMany);
    expectAnyBlock<4, T>(RnScrambledNiederreiterMultiRng<T>(5), many, sequenceOfMany);
}

// --- scrambling
// -----------------------------------------------------------------------------------

int getCommonBits(double a, double b)
{
    int count = 0;
    for (;
         count < 32 && std::floor(std::ldexp(a, count + 1)) == std::floor(std::ldexp(b, count + 1));
         ++count)
    {
    }
    return count;
}

TEST(Scrambled, KeepsWhatPointsHaveInCommonAndNothingElse)
{
    constexpr unsigned int count = 128;
    for (const unsigned int seed : {0U, 1U, 2U, 0xFFFFFFFFU})
    {
        RnVanDerCorputRng<double> plain1;
        RnScrambledVanDerCorputRng<double> scrambled1(seed);
        RnNiederreiterMultiRng<double> plain;
        RnScrambledNiederreiterMultiRng<double> scrambled(seed);
        std::vector<double> before(5 * count), after(5 * count);
        double* from[] = {&before[0], &before[count], &before[2 * count], &before[3 * count]};
        double* to[] = {&after[0], &after[count], &after[2 * count], &after[3 * count]};
        plain.getSequence(count, from);
        scrambled.getSequence(count, to);
        plain1.getSequence(count, &before[4 * count]);
        scrambled1.getSequence(count, &after[4 * count]);
        EXPECT_NE(before[0], after[0]);
        for (unsigned int c = 0; c < 5 * count; c += count)
            for (unsigned int i = 0; i < count; ++i)
                for (unsigned int j = 0; j < i; ++j)
                    ASSERT_EQ(getCommonBits(before[c + i], before[c + j]),
                              getCommonBits(after[c + i], after[c + j]));
    }
}

TEST(Scrambled, IntegratesSmoothFunctionsFarBetterThanChance)
{
    const auto getError = [](unsigned int n)
    {
        double squares = 0;
        for (unsigned int seed = 0; seed < 64; ++seed)
        {
            RnScrambledNiederreiterMultiRng<double> points(seed);
            double sum = 0, x[4];
            for (unsigned int i = 0; i < n; ++i)
            {
                points.getSample(x);
                sum += x[0] * x[1] * x[2] * x[3] * 16;
            }
            squares += (sum / n - 1) * (sum / n - 1);
        }
        return std::sqrt(squares / 64);
    };
    const double error = getError(4096);
    EXPECT_LT(error, std::sqrt((std::pow(4. / 3, 4) - 1) / 4096) / 20); // by chance, less 20 times
    EXPECT_LT(error, getError(256) / 16);                               // faster than 1 / n
}

// --- adaptors
// -------------------------------------------------------------------------------------

TEST(Adaptors, GiveTheStandardLibraryOurBitsAndTakeItsEngines)
{
    RnLecuyerUniformRng<double> uniform, same;
    RnBitGenerator<double> bits(&uniform);
    const auto high = static_cast<std::uint32_t>(same() * 65536),
               low = static_cast<std::uint32_t>(same() * 65536);
    EXPECT_EQ(bits(), high << 16 | low);
    std::vector<int> cards(52);
    std::iota(cards.begin(), cards.end(), 0);
    std::vector<int> shuffled = cards;
    std::shuffle(shuffled.begin(), shuffled.end(), bits);
    EXPECT_NE(shuffled, cards);
    EXPECT_TRUE(std::is_permutation(shuffled.begin(), shuffled.end(), cards.begin()));
    EXPECT_THROW(RnBitGenerator<float>(nullptr), ExInternalError);

    RnStdEngineRng<double, std::mt19937> twister(std::mt19937(42));
    std::mt19937 engine(42);
    const std::uint64_t first = engine();
    const std::uint64_t joined = (first << 32 | engine()) & ((1ULL << 53) - 1);
    EXPECT_EQ(twister(), std::ldexp(static_cast<double>(joined), -53));
    twister();
    twister.restart();
    EXPECT_EQ(twister(), std::ldexp(static_cast<double>(joined), -53));
}

// --- digests
// --------------------------------------------------------------------------------------

class Digest
{
public:
    template <class T>
    void add(T value)
    {
        std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t> bits;
        std::memcpy(&bits, &value, sizeof bits);
        _value = (_value ^ bits) * 0x100000001B3U;
        _value ^= _value >> 29;
    }
    std::uint64_t get() const { return _value; }

private:
    std::uint64_t _value = 0xCBF29CE484222325U;
};

constexpr unsigned int sampleCount = 1000000;

template <class T>
std::uint64_t getDigest(RnRng<T>& rng)
{
    std::vector<T> samples(sampleCount);
    rng.getSequence(sampleCount, samples.data());
    Digest digest;
    for (unsigned int i = 0; i < sampleCount; ++i)
        digest.add(samples[i]);
    for (unsigned int i = 0; i < 1000; ++i)
        digest.add(rng.getPdf(samples[i]));
    return digest.get();
}

template <class T>
std::uint64_t getDigest(RnBiRng<T>& rng)
{
    Digest digest;
    for (unsigned int i = 0; i < sampleCount; ++i)
    {
        T x = 0, y = 0;
        rng.getSample(x, y);
        digest.add(x);
        digest.add(y);
    }
    return digest.get();
}

template <class T, unsigned int N>
std::uint64_t getDigest(RnMultiRng<T, N>& rng)
{
    Digest digest;
    for (unsigned int i = 0; i < sampleCount; ++i)
    {
        T x[N];
        rng.getSample(x);
        for (const T value : x)
            digest.add(value);
    }
    return digest.get();
}

/// Of every generator but the runtime's own.
template <class T>
std::vector<std::uint64_t> getDigests()
{
    RnLecuyerUniformRng<T> uniform;
    RnNumRecUniformRng<T> shuffled;
    RnStdEngineRng<T, std::mt19937> twister;
    RnVanDerCorputRng<T> base2, base3(3);
    RnScrambledVanDerCorputRng<T> scrambled(5);
    RnGaussianRng<T> gaussian(&uniform, 3, 2);
    RnMexicanHatRng<T> hat(&uniform);
    const std::vector<T> weights(std::begin(lampWeights), std::end(lampWeights));
    RnHistogramRng<T> lamp(&uniform, RnHistogram<T>(0, 1, 6, weights.data()));
    RnHistogramRng<T> evenLamp(&base3, RnHistogram<T>(0, 1, 6, weights.data()),
                               RnHistogramRng<T>::Inverse);
    RnHaltonBiRng<T> haltonPairs;
    RnSeparableBiRng<T> pairs(&gaussian);
    RnAsymmetricalSeparableBiRng<T> mixed(&hat, &base2);
    RnHistogramBiRng<T> image(
        &uniform, RnBiHistogram<T>(RnBins<T>(0, 1, 3), RnBins<T>(0, 1, 2), weights.data()));
    RnHaltonMultiRng<T, 3> halton;
    RnHammersleyMultiRng<T, 3> hammersley(777);
    RnNiederreiterMultiRng<T> niederreiter;
    RnScrambledNiederreiterMultiRng<T> scrambledNiederreiter(5);
    RnSeparableMultiRng<T, 3> triples(&gaussian);
    RnSphereMultiRng<T> sphere(&haltonPairs);
    RnCosineHemisphereMultiRng<T> cosine(&haltonPairs);
    RnConeMultiRng<T> cone(&haltonPairs, T(0.3));
    return {getDigest(uniform),    getDigest(shuffled),     getDigest(twister),
            getDigest(base2),      getDigest(base3),        getDigest(scrambled),
            getDigest(gaussian),   getDigest(hat),          getDigest(lamp),
            getDigest(evenLamp),   getDigest(haltonPairs),  getDigest(pairs),
            getDigest(mixed),      getDigest(image),        getDigest(halton),
            getDigest(hammersley), getDigest(niederreiter), getDigest(scrambledNiederreiter),
            getDigest(triples),    getDigest(sphere),       getDigest(cosine),
            getDigest(cone)};
}

TEST(ManySamples, DigestsAreTheSameEverywhere)
{
    const std::vector<std::uint64_t> floats = {
        14438983124590595929U, 6311841887396919001U,  12343596099347037342U, 15560357990410685995U,
        9452036507583706736U,  11963496491499005405U, 13876260264096658042U, 5268224545099802905U,
        5712593122025135719U,  2063004974555751912U,  9236279745920414728U,  8699723173799883443U,
        17495894063833076134U, 15553221944162833343U, 15026122572354338529U, 7027957451417952571U,
        11325871151751156266U, 1374268388179820044U,  4751448162389059621U,  18322954749658657195U,
        11594143580311052900U, 5938126714233769675U};
    const std::vector<std::uint64_t> doubles = {
        18087096420039437588U, 1491559031642254356U,  16300741743590676429U, 16437225700581456650U,
        1014511157715494889U,  14960127163569207662U, 14026818600160530659U, 9047991021604097431U,
        18380526640656120376U, 2785190267247047760U,  4119804690840705323U,  17398092889035432609U,
        3682845005105244022U,  14019544924478890146U, 3452758707257070975U,  14855892869073017128U,
        5095068475412625284U,  1536358687952939076U,  15396942525933934457U, 16827153059261877061U,
        9395789655317482035U,  3586756783598743500U};
    EXPECT_EQ(getDigests<float>(), floats);
    EXPECT_EQ(getDigests<double>(), doubles);
}

} // namespace
