#include "gallery.h"

#include <base/rnAsymmetricalSeparableBiRng.h>
#include <base/rnDirectionMultiRng.h>
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
#include <base/rnStdUniformRng.h>

#include <cmath>

namespace
{

using Point = Exhibit::Point;

const double pi = std::acos(-1.);
constexpr unsigned int stripes[] = {1, 3, 6, 9, 10, 7, 2, 0, 0, 4, 8, 5};

double getWave(double x)
{
    return pi / 2 * std::sin(pi * x);
}
double getUnitMean(const Point& p)
{
    return getWave(p[0]) * getWave(p[1]);
}

/// The coordinates `first` and `first + 1` of a generator of vectors.
template <unsigned int N>
std::vector<Point> drawVectors(Kr::RnMultiRng<double, N>& rng, unsigned int n, unsigned int first)
{
    std::vector<Point> points(n);
    double sample[N];
    for (Point& point : points)
    {
        rng.getSample(sample);
        point = {sample[first], sample[first + 1], first + 2 < N ? sample[first + 2] : 0};
    }
    return points;
}

std::vector<Point> drawPairs(Kr::RnBiRng<double>& rng, unsigned int n)
{
    std::vector<Point> points(n);
    for (Point& point : points)
        rng.getSample(point[0], point[1]);
    return points;
}

std::vector<Point> drawValues(Kr::RnRng<double>& rng, unsigned int n)
{
    std::vector<Point> points(n);
    for (Point& point : points)
        point[0] = rng();
    return points;
}

/// Pairs of successive samples.
template <class Rng, class... Arguments>
Exhibit makeUniform(const char* name, const char* detail, Arguments... arguments)
{
    const auto draw = [=](unsigned int n)
    {
        Rng rng(arguments...);
        Kr::RnSeparableBiRng<double> pairs(&rng);
        return drawPairs(pairs, n);
    };
    return {name, detail, Exhibit::Plane, true, {0, 0}, {1, 1}, draw, nullptr, getUnitMean};
}

template <class Draw>
Exhibit makeSquare(const char* name, const char* detail, Draw draw)
{
    return {name, detail, Exhibit::Plane, true, {0, 0}, {1, 1}, draw, nullptr, getUnitMean};
}

template <class Rng, class... Arguments>
Exhibit makeFourDimensional(const char* name, const char* detail, unsigned int first,
                            Arguments... arguments)
{
    return makeSquare(name, detail,
                      [=](unsigned int n)
                      {
                          Rng rng(arguments...);
                          return drawVectors<4>(rng, n, first);
                      });
}

void addSquares(std::vector<Exhibit>& gallery)
{
    using namespace Kr;
    gallery.push_back(makeUniform<RnLecuyerUniformRng<double>>("Lecuyer", "combined"));
    gallery.push_back(makeUniform<RnNumRecUniformRng<double>>("RAN2", "shuffled"));
    gallery.push_back(makeUniform<RnStdUniformRng<double>>("Std", "rand, seed 1", 1U));
    gallery.push_back(makeSquare("Halton", "bases 2, 3",
                                 [](unsigned int n)
                                 {
                                     RnHaltonBiRng<double> rng;
                                     return drawPairs(rng, n);
                                 }));
    gallery.push_back(makeSquare("Halton", "bases 5, 7",
                                 [](unsigned int n)
                                 {
                                     RnHaltonBiRng<double> rng(5, 7);
                                     return drawPairs(rng, n);
                                 }));
    gallery.push_back(makeSquare("Hammersley", "grid, base 2",
                                 [](unsigned int n)
                                 {
                                     RnHammersleyBiRng<double> rng(n);
                                     return drawPairs(rng, n);
                                 }));
    using Plain = RnNiederreiterMultiRng<double>;
    using Scrambled = RnScrambledNiederreiterMultiRng<double>;
    gallery.push_back(makeFourDimensional<Plain>("Niederreiter", "1, 2 of 4", 0));
    gallery.push_back(makeFourDimensional<Plain>("Niederreiter", "3, 4 of 4", 2));
    gallery.push_back(makeFourDimensional<Scrambled>("Owen", "Niederreiter 1, 2", 0, 1U));
    gallery.push_back(makeFourDimensional<Scrambled>("Owen", "Niederreiter 3, 4", 2, 1U));
}

Kr::RnBiHistogram<double> makeRings()
{
    Kr::RnBiHistogram<double> rings(Kr::RnBins<double>(0, 1, 64), Kr::RnBins<double>(0, 1, 64));
    for (unsigned int j = 0; j < 64; ++j)
        for (unsigned int i = 0; i < 64; ++i)
        {
            const double x = (i + 0.5) / 64, y = (j + 0.5) / 64;
            const double wave = std::cos(5 * pi * std::hypot(x - 0.5, y - 0.5));
            rings.add(x, y, wave * wave * wave * wave);
        }
    return rings;
}

/// The rings have their centre in the middle, so that the mean of x is a half.
double getRingMean(const Point& p)
{
    return 2 * p[0];
}

void addShapes(std::vector<Exhibit>& gallery)
{
    using namespace Kr;
    const auto drawGaussian = [](unsigned int n)
    {
        RnLecuyerUniformRng<double> uniform;
        RnGaussianRng<double> gaussian(&uniform);
        RnSeparableBiRng<double> pairs(&gaussian);
        return drawPairs(pairs, n);
    };
    gallery.push_back({"Separable",
                       "Gaussian, Lecuyer",
                       Exhibit::Plane,
                       false,
                       {-3.2, -3.2},
                       {3.2, 3.2},
                       drawGaussian,
                       nullptr,
                       [](const Point& p) { return p[0] * p[0] * p[1] * p[1]; }});
    const auto drawHats = [](unsigned int n)
    {
        RnVanDerCorputRng<double> base2(2), base3(3);
        RnMexicanHatRng<double> hat2(&base2), hat3(&base3);
        RnAsymmetricalSeparableBiRng<double> pairs(&hat2, &hat3);
        return drawPairs(pairs, n);
    };
    gallery.push_back({"Asymmetrical",
                       "hats, bases 2, 3",
                       Exhibit::Plane,
                       false,
                       {-0.5, -0.5},
                       {0.5, 0.5},
                       drawHats,
                       nullptr,
                       [](const Point& p) { return 576 * p[0] * p[0] * p[1] * p[1]; }});
    const auto drawTriples = [](unsigned int n)
    {
        RnLecuyerUniformRng<double> uniform;
        RnMexicanHatRng<double> hat(&uniform);
        RnSeparableMultiRng<double, 3> triples(&hat);
        return drawVectors<3>(triples, n, 0);
    };
    gallery.push_back({"Triples",
                       "hats, Lecuyer",
                       Exhibit::Plane,
                       false,
                       {-0.5, -0.5},
                       {0.5, 0.5},
                       drawTriples,
                       nullptr,
                       [](const Point& p)
                       { return 13824 * p[0] * p[0] * p[1] * p[1] * p[2] * p[2]; }});
    const auto drawAlias = [](unsigned int n)
    {
        RnLecuyerUniformRng<double> uniform;
        RnHistogramBiRng<double> rng(&uniform, makeRings());
        return drawPairs(rng, n);
    };
    gallery.push_back({"Bi histogram",
                       "alias, Lecuyer",
                       Exhibit::Plane,
                       false,
                       {0, 0},
                       {1, 1},
                       drawAlias,
                       nullptr,
                       getRingMean});
    const auto drawInverse = [](unsigned int n)
    {
        RnHaltonBiRng<double> points;
        RnHistogramBiRng<double> rng(&points, makeRings());
        return drawPairs(rng, n);
    };
    gallery.push_back({"Bi histogram",
                       "inverse, Halton",
                       Exhibit::Plane,
                       false,
                       {0, 0},
                       {1, 1},
                       drawInverse,
                       nullptr,
                       getRingMean});
}

template <class Directions, class Source = Kr::RnHaltonBiRng<double>, class... Arguments>
Exhibit makeGlobe(const char* name, const char* detail,
                  std::function<double(const Point&)> integrand, Arguments... arguments)
{
    const auto draw = [=](unsigned int n)
    {
        Source points;
        Directions rng(&points, arguments...);
        return drawVectors<3>(rng, n, 0);
    };
    return {name, detail,  Exhibit::Globe,      false, {-1, -1}, {1, 1},
            draw, nullptr, std::move(integrand)};
}

/// Pairs of the combined generator, with a source of their own.
struct LecuyerPairs : Kr::RnSeparableBiRng<double>
{
    LecuyerPairs()
        : RnSeparableBiRng<double>(&uniform)
    {
    }
    Kr::RnLecuyerUniformRng<double> uniform;
};

void addDirections(std::vector<Exhibit>& gallery)
{
    using namespace Kr;
    const auto getSphereMean = [](const Point& p) { return 3 * p[2] * p[2]; };
    const double angle = pi / 4;
    gallery.push_back(
        makeGlobe<RnSphereMultiRng<double>, LecuyerPairs>("Sphere", "Lecuyer", getSphereMean));
    gallery.push_back(makeGlobe<RnSphereMultiRng<double>>("Sphere", "Halton", getSphereMean));
    gallery.push_back(makeGlobe<RnHemisphereMultiRng<double>>(
        "Hemisphere", "Halton", [](const Point& p) { return 2 * p[2]; }));
    gallery.push_back(makeGlobe<RnCosineHemisphereMultiRng<double>>(
        "Cosine", "hemisphere, Halton", [](const Point& p) { return 1.5 * p[2]; }));
    gallery.push_back(makeGlobe<RnConeMultiRng<double>>(
        "Cone", "45 degrees, Halton",
        [=](const Point& p) { return 2 * p[2] / (1 + std::cos(angle)); }, angle));
}

/// A generator of single values that draws from the source.
template <class Make>
Exhibit makeLine(const char* name, const char* detail, bool isUnit, double min, double max,
                 Make make, std::function<double(const Point&)> integrand)
{
    const auto draw = [=](unsigned int n)
    {
        Kr::RnLecuyerUniformRng<double> uniform;
        return drawValues(*make(&uniform), n);
    };
    const auto getPdf = [=](double x)
    {
        Kr::RnLecuyerUniformRng<double> uniform;
        return make(&uniform)->getPdf(x);
    };
    return {name, detail, Exhibit::Line,       isUnit, {min, 0}, {max, 1},
            draw, getPdf, std::move(integrand)};
}

void addLines(std::vector<Exhibit>& gallery)
{
    using namespace Kr;
    using Source = RnRng<double>*;
    gallery.push_back(makeLine(
        "Van der Corput", "base 2", true, 0, 1,
        [](Source) { return std::make_unique<RnVanDerCorputRng<double>>(); },
        [](const Point& p) { return getWave(p[0]); }));
    gallery.push_back(makeLine(
        "Owen", "Van der Corput", true, 0, 1,
        [](Source) { return std::make_unique<RnScrambledVanDerCorputRng<double>>(1U); },
        [](const Point& p) { return getWave(p[0]); }));
    gallery.push_back(makeLine(
        "Gaussian", "Lecuyer", false, -4, 4,
        [](Source uniform) { return std::make_unique<RnGaussianRng<double>>(uniform); },
        [](const Point& p) { return p[0] * p[0]; }));
    gallery.push_back(makeLine(
        "Mexican hat", "Lecuyer", false, -0.5, 0.5,
        [](Source uniform) { return std::make_unique<RnMexicanHatRng<double>>(uniform); },
        [](const Point& p) { return 24 * p[0] * p[0]; }));
    const std::vector<double> weights(std::begin(stripes), std::end(stripes));
    double mean = 0, total = 0;
    for (unsigned int i = 0; i < weights.size(); ++i)
    {
        mean += weights[i] * (i + 0.5);
        total += weights[i];
    }
    mean /= total * static_cast<double>(weights.size());
    gallery.push_back(makeLine(
        "Histogram", "alias, Lecuyer", false, 0, 1,
        [=](Source uniform)
        {
            const RnHistogram<double> histogram(0, 1, static_cast<unsigned int>(weights.size()),
                                                weights.data());
            return std::make_unique<RnHistogramRng<double>>(uniform, histogram);
        },
        [=](const Point& p) { return p[0] / mean; }));
}

} // namespace

std::vector<Exhibit> getGallery()
{
    std::vector<Exhibit> gallery;
    addSquares(gallery);
    addShapes(gallery);
    addDirections(gallery);
    addLines(gallery);
    return gallery;
}
