// Numeric helpers: floating point, classification, powers of two, intervals.

#include "assertionCheck.h"

#include <base/arrayPtr.h>
#include <base/dtTimeIndexInterval.h>
#include <base/floatUtil.h>
#include <base/interval.h>
#include <base/ltFPClass.h>
#include <base/objPtr.h>
#include <base/pow2.h>
#include <base/vector.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <sstream>

namespace
{

using Kr::FloatUtil;
using Kr::Interval;
using Kr::LtFPClass;
using Kr::Pow2;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

template <class T>
class FloatUtilOf : public testing::Test
{
};
using FloatTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(FloatUtilOf, FloatTypes, );

TYPED_TEST(FloatUtilOf, comparesStrictlyAtExactlyTheTolerance)
{
    // Powers of two, so that every sum is exact.
    const TypeParam eps = TypeParam(1) / 8;
    struct
    {
        TypeParam a, b;
        bool equal, smaller, smallerEqual, greater, greaterEqual;
    } const cases[] = {
        {1, 1, true, false, true, false, true},
        {1, 1 + eps, false, false, true, false, false},
        {1 + eps, 1, false, false, false, false, true},
        {1, 1 + eps / 2, true, false, true, false, true},
        {1, 1 + 2 * eps, false, true, true, false, false},
        {1 + 2 * eps, 1, false, false, false, true, true},
        {TypeParam(nan), 1, false, false, false, false, false},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(testing::Message() << c.a << " against " << c.b);
        EXPECT_EQ(FloatUtil::isEqual(c.a, c.b, eps), c.equal);
        EXPECT_EQ(FloatUtil::isSmaller(c.a, c.b, eps), c.smaller);
        EXPECT_EQ(FloatUtil::isSmallerEqual(c.a, c.b, eps), c.smallerEqual);
        EXPECT_EQ(FloatUtil::isGreater(c.a, c.b, eps), c.greater);
        EXPECT_EQ(FloatUtil::isGreaterEqual(c.a, c.b, eps), c.greaterEqual);
    }
}

TYPED_TEST(FloatUtilOf, passesTheRuntimeLibraryThrough)
{
    const volatile TypeParam given[] = {TypeParam(0.75), TypeParam(-0.3125)}; // nothing is folded
    const TypeParam x = given[0], y = given[1];
    for (const TypeParam zero : {TypeParam(0), TypeParam(-0.)})
        EXPECT_EQ(FloatUtil::sgn(zero), 1);
    for (const TypeParam negative : {y, TypeParam(nan)})
        EXPECT_EQ(FloatUtil::sgn(negative), -1);
    EXPECT_EQ(FloatUtil::abs(y), TypeParam(0.3125));
    EXPECT_EQ(FloatUtil::floor(y), -1);
    EXPECT_EQ(FloatUtil::ceil(x), 1);
    EXPECT_EQ(FloatUtil::mod(TypeParam(-7), TypeParam(3)), -1);
    EXPECT_EQ(FloatUtil::pow(x, y), std::pow(x, y));
    EXPECT_EQ(FloatUtil::sqrt(x), std::sqrt(x));
    EXPECT_EQ(FloatUtil::hypot(TypeParam(3), TypeParam(-4)), 5);
    EXPECT_EQ(FloatUtil::hypot(std::numeric_limits<TypeParam>::max(), TypeParam(0)),
              TypeParam(inf));
    EXPECT_EQ(FloatUtil::atan2(x, y), std::atan2(x, y));
    struct
    {
        TypeParam (*function)(TypeParam) noexcept;
        TypeParam expected;
    } const cases[] = {{FloatUtil::sin, std::sin(x)},    {FloatUtil::cos, std::cos(x)},
                       {FloatUtil::tan, std::tan(x)},    {FloatUtil::asin, std::asin(x)},
                       {FloatUtil::acos, std::acos(x)},  {FloatUtil::atan, std::atan(x)},
                       {FloatUtil::exp, std::exp(x)},    {FloatUtil::log, std::log(x)},
                       {FloatUtil::log10, std::log10(x)}};
    for (const auto& c : cases)
        EXPECT_EQ(c.function(x), c.expected) << &c - cases;
    EXPECT_TRUE(std::isnan(FloatUtil::sqrt(TypeParam(-1))));
    EXPECT_EQ(FloatUtil::radiansToDegrees(TypeParam(3.141592653589793)), TypeParam(180));
    EXPECT_EQ(FloatUtil::degreesToRadians(TypeParam(90)), TypeParam(1.5707963267948966));
}

TYPED_TEST(FloatUtilOf, classifies)
{
    struct
    {
        TypeParam x;
        bool isNaN, isPositive, isNegative;
    } const cases[] = {{TypeParam(nan), true, false, false},
                       {TypeParam(inf), false, true, false},
                       {TypeParam(-inf), false, false, true},
                       {std::numeric_limits<TypeParam>::max(), false, false, false},
                       {std::numeric_limits<TypeParam>::denorm_min(), false, false, false},
                       {0, false, false, false}};
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.x);
        EXPECT_EQ(LtFPClass::isNaN(c.x), c.isNaN);
        EXPECT_EQ(LtFPClass::isPositiveInfinity(c.x), c.isPositive);
        EXPECT_EQ(LtFPClass::isNegativeInfinity(c.x), c.isNegative);
        EXPECT_EQ(FloatUtil::isnan(c.x), c.isNaN);
        EXPECT_EQ(FloatUtil::isinf(c.x), c.isPositive || c.isNegative);
        EXPECT_EQ(FloatUtil::isfinite(c.x), !(c.isNaN || c.isPositive || c.isNegative));
    }
}

TEST(FloatUtil, hasATolerancePerType)
{
    EXPECT_EQ(FloatUtil::getCompareEps(0.F), 1e-4F);
    EXPECT_EQ(FloatUtil::getCompareEps(0.), 1e-7);
    EXPECT_EQ(FloatUtil::getCompareEpsPrecision(0.F), 5);
    EXPECT_EQ(FloatUtil::getCompareEpsPrecision(0.), 8);
    EXPECT_FALSE(FloatUtil::isEqual(1., 1.0000002));
    EXPECT_TRUE(FloatUtil::isEqual(1.F, 1.00005F));
    EXPECT_TRUE(FloatUtil::isSmaller(1.F, 1.0002F));
    EXPECT_TRUE(FloatUtil::isSmallerEqual(1., 1.));
    EXPECT_FALSE(FloatUtil::isGreaterEqual(1., 1. + 2e-7));
    EXPECT_TRUE(FloatUtil::isGreater(1. + 2e-7, 1.));
}

TEST(FloatUtil, roundsAsFloorOfTheSumForEveryMagnitude)
{
    std::mt19937_64 random(1);
    const auto check = [](double x)
    {
        const double expected = std::floor(x + 0.5);
        const double rounded = FloatUtil::round(x);
        ASSERT_TRUE(rounded == expected || (std::isnan(rounded) && std::isnan(expected))) << x;
        ASSERT_EQ(std::signbit(rounded), std::signbit(expected)) << x;
        const float narrow = static_cast<float>(x);
        const double exact = std::floor(static_cast<double>(narrow) + 0.5);
        const float roundedNarrow = FloatUtil::round(narrow);
        ASSERT_TRUE(roundedNarrow == static_cast<float>(exact) || std::isnan(exact)) << narrow;
        ASSERT_EQ(std::isnan(roundedNarrow), std::isnan(exact));
    };
    for (double edge :
         {0., 0.5, 2.5, inf, nan, 2147483647.5, 2147483648., 4503599627370496., 9007199254740993.})
        for (double x : {std::nextafter(edge, 0.), edge, std::nextafter(edge, inf)})
        {
            check(x);
            check(-x);
        }
    for (int i = 0; i < 1000000; ++i)
    {
        const int exponent = static_cast<int>(random() % 80) - 10;
        check(std::ldexp(static_cast<double>(static_cast<std::int64_t>(random())), exponent - 63));
    }
}

TEST(FloatUtil, stepsSmoothly)
{
    EXPECT_EQ(FloatUtil::smoothStep(0, 1, 0.5F, 10, 20), 15);
    EXPECT_EQ(FloatUtil::smoothStep(0, 1, -1, 10, 20), 10);
    EXPECT_EQ(FloatUtil::smoothStep(0, 1, 0, 10, 20), 10);
    EXPECT_EQ(FloatUtil::smoothStep(0, 0.1F, 0.1F, 10, 20.3F), 20.3F);
    EXPECT_EQ(FloatUtil::smoothStep(2, 4, 2.5F, 0, 1), 0.15625F); // 3/16 - 2/64
    EXPECT_EQ(FloatUtil::smoothStep(1, 1, 1, 10, 20), 20);
}

TEST(Pow2, agreesWithTheDefinitionAroundEveryPower)
{
    for (std::uint32_t n = 0; n < 32; ++n)
    {
        SCOPED_TRACE(n);
        const std::uint32_t power = Pow2::exp(n);
        EXPECT_EQ(power, static_cast<std::uint32_t>(std::ldexp(1., static_cast<int>(n))));
        EXPECT_EQ(Pow2::exp(n + 32), power);
        EXPECT_EQ(Pow2::log2Floor(power), n);
        EXPECT_EQ(Pow2::log2Ceil(power), n);
        EXPECT_EQ(Pow2::ceil(power), power);
        if (n < 2)
            continue;
        EXPECT_EQ(Pow2::log2Floor(power - 1), n - 1);
        EXPECT_EQ(Pow2::log2Floor(power + 1), n);
        EXPECT_EQ(Pow2::log2Ceil(power - 1), n);
        EXPECT_EQ(Pow2::log2Ceil(power + 1), n + 1);
        EXPECT_EQ(Pow2::ceil(power - 1), power);
        EXPECT_EQ(Pow2::ceil(power + 1), n == 31 ? 1 : 2 * power);
    }
    EXPECT_EQ(Pow2::ceil(0), 0U);
    EXPECT_EQ(Pow2::ceil(0xC0000000U), 1U);
    EXPECT_EQ(Pow2::ceil(0xFFFFFFFFU), 1U);
    static_assert(Pow2::ceil(640) == 1024, "usable in constant expressions");
}

TEST(Pow2, refusesTheLogarithmOfZero)
{
    expectAssertion("a > 0", "src/base/pow2.inline", 40, [] { Pow2::log2Floor(0); });
    expectAssertion("a > 0", "src/base/pow2.inline", 57, [] { Pow2::log2Ceil(0); });
}

using IntervalD = Interval<double>;

TEST(Interval, tellsHowOneLiesAgainstAnother)
{
    constexpr auto disjoint = IntervalD::Disjoint;
    constexpr auto inside = IntervalD::Inside;
    constexpr auto overlapping = IntervalD::Overlapping;
    constexpr auto enclosing = IntervalD::Enclosing;
    struct
    {
        IntervalD a, b;
        IntervalD::Containment inclusive, exclusive;
    } const cases[] = {
        {{1, 2}, {2, 3}, overlapping, disjoint},
        {{2, 3}, {1, 2}, overlapping, disjoint},
        {{1, 2}, {0, 5}, inside, inside},
        {{0, 5}, {1, 2}, enclosing, enclosing},
        {{1, 2}, {1, 2}, inside, inside},
        {{1, 2}, {1, 5}, inside, inside},
        {{1, 5}, {1, 2}, enclosing, enclosing},
        {{1, 3}, {2, 5}, overlapping, overlapping},
        {{1, 2}, {3, 4}, disjoint, disjoint},
        {{3, 4}, {1, 2}, disjoint, disjoint},
        // A single value at the end of another interval: open intervals do not meet there.
        {{2, 2}, {2, 3}, inside, disjoint},
        {{2, 3}, {2, 2}, enclosing, disjoint},
        {{2, 2}, {1, 3}, inside, inside},
        {IntervalD::getEmpty(), {1, 2}, disjoint, disjoint},
        {{1, 2}, IntervalD::getEmpty(), disjoint, disjoint},
        {IntervalD::getEmpty(), IntervalD::getEmpty(), disjoint, disjoint},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(testing::Message() << c.a << " against " << c.b);
        EXPECT_EQ(c.a.getInclusiveContainment(c.b), c.inclusive);
        EXPECT_EQ(c.a.getExclusiveContainment(c.b), c.exclusive);
    }
}

TEST(Interval, calculates)
{
    const IntervalD a(1, 3), b(-2, 4), empty = IntervalD::getEmpty();
    EXPECT_EQ(a + b, IntervalD(-1, 7));
    EXPECT_EQ(a - b, IntervalD(-3, 5));
    EXPECT_EQ(a * b, IntervalD(-6, 12));
    EXPECT_EQ(b * b, IntervalD(-8, 16));
    EXPECT_EQ(b / a, IntervalD(-2, 4));
    EXPECT_EQ(b / -a, IntervalD(-4, 2));
    EXPECT_EQ(-b, IntervalD(-4, 2));
    EXPECT_EQ(a / -2., IntervalD(-1.5, -0.5));
    EXPECT_EQ(a / 2., IntervalD(0.5, 1.5));
    EXPECT_EQ(a * -2., IntervalD(-6, -2));
    EXPECT_EQ(1. - a, IntervalD(-2, 0));
    EXPECT_EQ(6. / a, IntervalD(2, 6));
    EXPECT_EQ(IntervalD(2, 4).reciprocal(), IntervalD(0.25, 0.5));
    EXPECT_EQ(IntervalD(-4, -2).reciprocal(), IntervalD(-0.5, -0.25));
    IntervalD c = a;
    EXPECT_EQ((((c += b) *= 2.) -= a) /= 2., IntervalD(-2.5, 6.5));

    for (const IntervalD& result : {a + empty, empty - a, a * empty, empty / a, a / empty, -empty,
                                    empty / -2., empty * -1., empty.reciprocal()})
        EXPECT_TRUE(result == empty) << result;
    // Infinite ends are limits: zero times infinity is zero, infinity over infinity meets zero.
    EXPECT_EQ(IntervalD(0, 1) * IntervalD(2, inf), IntervalD(0, inf));
    EXPECT_EQ(IntervalD(1, inf) / IntervalD(1, inf), IntervalD(0, inf));
    const IntervalD undefined = a * IntervalD(nan, 1);
    EXPECT_TRUE(std::isnan(undefined.getLower()) && std::isnan(undefined.getUpper()));
}

TEST(Interval, refusesToDivideByZero)
{
    const char* const file = "src/base/interval.inline";
    const char* const holdsZero = "val.getLower() > 0. || val.getUpper() < 0.";
    const IntervalD a(1, 3);
    for (double zero : {0., -0., nan})
        expectAssertion("val != 0", file, 221, [&] { a / zero; });
    for (const IntervalD& zero : {IntervalD(-1, 1), IntervalD(0, 1), IntervalD(-1, 0), IntervalD()})
    {
        expectAssertion(holdsZero, file, 566, [&] { zero.reciprocal(); });
        expectAssertion(holdsZero, file, 566, [&] { a / zero; });
    }
}

TEST(Interval, keepsItsEndsInOrderAndKnowsItsValues)
{
    const IntervalD a(3, 1);
    EXPECT_EQ(a.getLower(), 1);
    EXPECT_EQ(a.getUpper(), 3);
    EXPECT_EQ(a.getWidth(), 2);
    EXPECT_EQ(a.getCentre(), 2);
    EXPECT_TRUE(a.contains(1.) && a.contains(3.) && !a.contains(3.5) && !a.contains(nan));
    EXPECT_TRUE(a.contains(IntervalD(1, 2)) && !a.contains(IntervalD(0, 2)));
    EXPECT_TRUE(a.contains(IntervalD::getEmpty()));
    EXPECT_TRUE(a.intersects(IntervalD(3, 4)) && !a.intersects(IntervalD(4, 5)));
    EXPECT_FALSE(a.isEmpty() || IntervalD(2.).isEmpty() || IntervalD(nan, 1).isEmpty());

    const double greatest = std::numeric_limits<double>::max();
    EXPECT_EQ(IntervalD(greatest / 2, greatest).getCentre(), greatest * 0.75);
    EXPECT_EQ(IntervalD(-inf, inf).getCentre(), 0);
    const double least = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(IntervalD(least, least).getCentre(), least);
}

/// Small enough to try every value of every interval, so that saturation is hit from all sides.
template <class T>
void expectExact(int least, int greatest)
{
    const auto saturate = [&](int value) { return T(std::clamp(value, least, greatest)); };
    const int ends[] = {least, least + 1, -3, -1, 0, 1, 2, 5, greatest - 1, greatest};
    for (int a : ends)
        for (int b : ends)
        {
            if (a < least || b < a)
                continue;
            const Interval<T> x{T(a), T(b)}, y{T(1), T(5)};
            EXPECT_EQ(x + x, Interval<T>(saturate(a + a), saturate(b + b))) << x;
            EXPECT_EQ(x - y, Interval<T>(saturate(a - 5), saturate(b - 1))) << x;
            EXPECT_EQ(-x, Interval<T>(saturate(-b), saturate(-a))) << x;
            EXPECT_EQ(x * T(5), Interval<T>(saturate(a * 5), saturate(b * 5))) << x;
            EXPECT_EQ(x / T(2), Interval<T>(T(a / 2), T(b / 2))) << x;
            EXPECT_EQ(x.getCentre(), T((a + b - (a + b < 0 ? (a + b) & 1 : 0)) / 2)) << x;
            EXPECT_EQ(x.getIntersection(Interval<T>(T(3))).isEmpty(), a > 3 || b < 3) << x;
        }
    EXPECT_TRUE(Interval<T>::getEmpty().isEmpty());
    EXPECT_EQ((Interval<T>(T(1), T(2)) + Interval<T>::getEmpty()), Interval<T>::getEmpty());
}

TEST(Interval, isExactOverIntegers)
{
    expectExact<std::int16_t>(-32768, 32767);
    expectExact<std::uint16_t>(0, 65535);
    EXPECT_EQ(Interval<int>(0, INT_MAX) + 1, Interval<int>(1, INT_MAX));
    EXPECT_EQ(Interval<int>(INT_MIN, 5) / -1, Interval<int>(-5, INT_MAX));
    EXPECT_EQ(Interval<unsigned>(2, 3) - 3U, Interval<unsigned>(0, 0));
    EXPECT_THROW((Interval<unsigned>(0, 3).reciprocal()), Kr::ExInternalError);
}

TEST(Interval, meetsAndJoins)
{
    const IntervalD a(1, 3), b(2, 5), far(7, 8), empty = IntervalD::getEmpty();
    EXPECT_EQ(a.getIntersection(b), IntervalD(2, 3));
    EXPECT_EQ(a.getIntersection(IntervalD(3, 4)), IntervalD(3.));
    EXPECT_EQ(a.getIntersection(far), empty);
    EXPECT_EQ(a.getIntersection(empty), empty);
    EXPECT_EQ(a.getUnion(far), IntervalD(1, 8));
    EXPECT_EQ(a.getUnion(empty), a);
    EXPECT_EQ(empty.getWidth(), 0);
    EXPECT_FALSE(empty.contains(0.) || empty.intersects(a));
    IntervalD grown = empty;
    for (double value : {2., -1., 1.})
        grown.extend(value);
    EXPECT_EQ(grown, IntervalD(-1, 2));

    std::ostringstream text;
    text << a << ' ' << empty << ' ' << Interval<float>(-1.5F, 2.F);
    EXPECT_EQ(text.str(), "[1, 3] [] [-1.5, 2]");
}

TEST(Interval, holdsEveryResultOfItsValues)
{
    std::mt19937 random(7);
    const auto pick = [&](double low, double high)
    { return std::uniform_real_distribution<double>(low, high)(random); };
    for (int i = 0; i < 100000; ++i)
    {
        const IntervalD a(pick(-9, 9), pick(-9, 9)), b(pick(-9, 9), pick(-9, 9));
        const double x = pick(a.getLower(), a.getUpper()), y = pick(b.getLower(), b.getUpper());
        ASSERT_TRUE((a + b).contains(x + y) && (a - b).contains(x - y) && (a * b).contains(x * y))
            << a << ' ' << b << ' ' << x << ' ' << y;
        if (!b.contains(0.))
        {
            ASSERT_TRUE((a / b).contains(x / y)) << a << ' ' << b << ' ' << x << ' ' << y;
        }
    }
}

TEST(Interval, saturatesTickCounts)
{
    using Ticks = Kr::DtTimeIndexInterval;
    const long long most = std::numeric_limits<long long>::max();
    const long long least = std::numeric_limits<long long>::min();
    const Ticks a(-3, 7), all(least, most), empty = Ticks::getEmpty();
    EXPECT_EQ(a + Ticks(1, 2), Ticks(-2, 9));
    EXPECT_EQ(a * Ticks(-2, 3), Ticks(-14, 21));
    EXPECT_EQ(a * Kr::DtTimeIndex(-1), Ticks(-7, 3));
    EXPECT_EQ(a / Kr::DtTimeIndex(2), Ticks(-1, 3));
    EXPECT_EQ(a / Kr::DtTimeIndex(-2), Ticks(-3, 1));
    EXPECT_EQ(Ticks(10, 21) / Ticks(-5, -2), Ticks(-10, -2));
    EXPECT_EQ(Ticks(1, 5).reciprocal(), Ticks(0, 1));
    EXPECT_THROW(a.reciprocal(), Kr::ExInternalError);
    EXPECT_THROW(a / Kr::DtTimeIndex(0), Kr::ExInternalError);
    EXPECT_EQ(all + all, all);
    EXPECT_EQ(all - all, all);
    EXPECT_EQ(all * all, all);
    EXPECT_EQ(-all, Ticks(least + 1, most));
    EXPECT_EQ(all / Kr::DtTimeIndex(-1), Ticks(least + 1, most));
    EXPECT_EQ(Ticks(most) + Ticks(0, 1), Ticks(most));
    EXPECT_EQ(Ticks(least) - Ticks(0, 1), Ticks(least));
    EXPECT_EQ(all.getWidth(), most);
    EXPECT_EQ(all.getCentre(), -1);
    EXPECT_EQ(Ticks(-4, -1).getCentre(), -3);
    EXPECT_EQ(Ticks(most - 1, most).getCentre(), most - 1);
    EXPECT_EQ(empty + a, empty);
    EXPECT_EQ(a.getExclusiveContainment(Ticks(7, 9)), Ticks::Disjoint);
    std::ostringstream text;
    text << all << empty;
    EXPECT_EQ(text.str(), "[-9223372036854775808, 9223372036854775807][]");
}

struct Base
{
    virtual ~Base() = default;
};
struct Derived : Base
{
    explicit Derived(int& alive)
        : _alive(alive)
    {
        ++_alive;
    }
    ~Derived() override { --_alive; }
    int& _alive;
};

TEST(ObjPtr, convertsResetsAndTests)
{
    int alive = 0;
    const auto make = [&] { return Kr::ObjPtrRet<Derived>(new Derived(alive)); };
    Kr::ObjPtr<Base> base = make();
    EXPECT_TRUE(base && base != nullptr);
    Kr::ObjPtr<Derived> derived(make());
    base = derived;
    EXPECT_TRUE(!derived && derived == nullptr);
    EXPECT_EQ(alive, 1);
    base.reset(new Derived(alive));
    EXPECT_EQ(alive, 1);
    base = nullptr;
    EXPECT_EQ(alive, 0);
    static_assert(!std::is_constructible_v<Kr::ObjPtr<Derived>, Kr::ObjPtr<Base>&>);
    static_assert(!std::is_constructible_v<Kr::ArrayPtr<Base>, Kr::ArrayPtr<Derived>&>);
    static_assert(std::is_same_v<Kr::Vector<int>, std::vector<int>>);
}

} // namespace
