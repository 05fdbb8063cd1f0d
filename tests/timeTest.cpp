#include "raised.h"

#include <base/dtEx.h>
#include <base/dtTime.h>
#include <base/dtTimeChrono.h>
#include <base/dtTimeCode.h>
#include <base/dtTimeIndex.h>
#include <base/dtTimeUtil.h>
#include <base/floatUtil.h>
#include <base/rational.h>
#include <base/rationalEx.h>
#include <base/streamInserters.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <limits>
#include <sstream>
#include <string>

// Inside the namespace on purpose: the library's own inserters must not be ambiguous there.
namespace Kr
{

namespace
{

constexpr std::int32_t least32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t greatest32 = std::numeric_limits<std::int32_t>::max();
constexpr long long least64 = std::numeric_limits<long long>::min();
constexpr long long greatest64 = std::numeric_limits<long long>::max();

const Rational film(24, 1);
const Rational pal(25, 1);
const Rational ntsc(30000, 1001);
const Rational ntscDouble(60000, 1001);

template <class Value>
std::string print(const Value& value)
{
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

// --- rationals ----------------------------------------------------------------------------------

TEST(Rational, IsKeptInLowestTermsWithAPositiveDenominator)
{
    const struct
    {
        std::int32_t numerator, denominator, storedNumerator, storedDenominator;
    } cases[] = {
        {0, -7, 0, 1},
        {6, -4, -3, 2},
        {-6, -4, 3, 2},
        {30000, 1001, 30000, 1001},
        {48000, 1000, 48, 1},
        {greatest32, -greatest32, -1, 1},
        {greatest32, greatest32 - 1, greatest32, greatest32 - 1},
        // What has no absolute value in 32 bits is left unreduced, and unsigned.
        {least32, 2, least32, 2},
        {least32, -2, least32, 2},
        {least32, least32, least32, least32},
        {1, least32, -1, least32},
        {2, least32, -2, least32},
        {0, least32, 0, 1},
    };
    for (const auto& c : cases)
    {
        const Rational value(c.numerator, c.denominator);
        EXPECT_EQ(c.storedNumerator, value.getNumerator()) << c.numerator << '/' << c.denominator;
        EXPECT_EQ(c.storedDenominator, value.getDenominator())
            << c.numerator << '/' << c.denominator;
    }
    EXPECT_EQ(Rational(1, 1), Rational());
}

TEST(Rational, RefusesAZeroDenominatorAndStaysAsItWas)
{
    Rational value(3, 2);
    EXPECT_EQ("Illegal zero denominator.",
              reasonOf<RationalEx::ExDenominatorZero>([&] { value.setValue(1, 0); },
                                                      "src/base/rational", 63));
    EXPECT_EQ(Rational(3, 2), value);
    EXPECT_THROW(Rational(0, 0), std::invalid_argument);
}

TEST(Rational, OrderIsTolerantAndEqualityIsExact)
{
    const Rational third(1, 3), close(333333334, 1000000000), below(3333331, 10000000);
    EXPECT_TRUE(!(third < close || third > close) && third <= close && third >= close);
    EXPECT_TRUE(third != close && !(third == close));
    EXPECT_TRUE(below < third && third > below && below <= third && third >= below);
    EXPECT_FALSE(below >= third || third <= below);
}

TEST(Rational, Prints)
{
    std::ostringstream stream;
    ntsc.dump(stream);
    EXPECT_EQ("(30000/1001=29.97)", stream.str());
    stream.str("");
    stream << std::setprecision(10) << ntsc;
    EXPECT_EQ("(30000/1001=29.97002997)", stream.str());
    EXPECT_EQ(std::numeric_limits<double>::infinity(), Rational(0, 1).getReciprocalDouble());
    EXPECT_FLOAT_EQ(1001.F / 30000.F, ntsc.getReciprocalFloat());
}

TEST(StreamInserters, PrintPlainDecimalWhateverTheStreamIsSetTo)
{
    std::ostringstream stream;
    stream << std::hex << std::showbase << std::showpos;
    Kr::operator<<(stream, least64) << ' ';
    Kr::operator<<(stream, std::numeric_limits<unsigned long long>::max()) << ' ';
    stream << DtTimeIndex(255) << ' ' << DtTime(255, film);
    EXPECT_EQ("-9223372036854775808 18446744073709551615 255 (255 @ (0x18/0x1=+24))", stream.str());
    stream.str("");
    Kr::operator<<(stream, std::numeric_limits<std::uint64_t>::max()) << ' '; // `long` on some
    Kr::operator<<(stream, std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ("18446744073709551615 -9223372036854775808", stream.str());
    stream.str("");
    stream << 255LL; // the standard's own inserter, not ambiguous
    EXPECT_EQ("0xff", stream.str());
}

// --- indices ------------------------------------------------------------------------------------

TEST(DtTimeIndex, WrapsAroundAndTruncatesTowardZero)
{
    const DtTimeIndex least(least64), greatest(greatest64);
    EXPECT_EQ(least, greatest + DtTimeIndex(1));
    EXPECT_EQ(greatest, least - 1);
    EXPECT_EQ(least, least * -1);
    EXPECT_EQ(least, least / -1);
    EXPECT_EQ(0, least % -1);
    EXPECT_EQ(least, -least);
    EXPECT_EQ(-3, DtTimeIndex(-7) / DtTimeIndex(2));
    EXPECT_EQ(-1, DtTimeIndex(-7) % DtTimeIndex(2));
    DtTimeIndex index(5);
    EXPECT_EQ(5, index++);
    EXPECT_EQ(6, index--);
    EXPECT_EQ(6, ++index);
    EXPECT_EQ(5, --index);
    EXPECT_EQ(least, ++DtTimeIndex(greatest));
    index = greatest64;
    EXPECT_EQ(least, index += 1);
    EXPECT_EQ(greatest, index -= 1);
    EXPECT_EQ(1, index *= greatest64); // (2^63 - 1)^2 modulo 2^64
    EXPECT_EQ(9223372036854775808., -least.getDouble());
    EXPECT_EQ(9223372036854775808.F, greatest.getFloat());
}

TEST(DtTimeIndex, ReportsAZeroDivisorAndStaysAsItWas)
{
    DtTimeIndex index(5);
    const char* const file = "src/base/dtTimeIndex";
    EXPECT_EQ("Assertion 'divisor != 0' failed.",
              reasonOf<ExInternalError>([&] { index /= 0; }, file));
    EXPECT_EQ("Assertion 'divisor != 0' failed.",
              reasonOf<ExInternalError>([&] { index %= 0; }, file));
    EXPECT_EQ(5, index);
    EXPECT_THROW(index.getHours(Rational(0, 1)), ExInternalError);
    EXPECT_THROW(index.getSeconds(Rational(0, 1)), ExInternalError);
}

TEST(DtTimeIndex, TellsHoursMinutesAndSeconds)
{
    const struct
    {
        long long count;
        Rational rate;
        long long hours, minutes;
        double seconds;
    } cases[] = {
        {180, film, 0, 0, 7.5},
        {90000, pal, 1, 0, 0.},
        {2262, pal, 0, 1, 30.48},
        {-2262, pal, 0, -1, -30.48},
        {-100 * 90000 - 1500, pal, -100, -1, 0.},
        {181, Rational(2, 1), 0, 1, 30.5},
        {30, Rational(-1, 3), 0, -1, -30.},
        {greatest64, Rational(1, 1), 2562047788015215, 30, 7.},
        {greatest64, Rational(1, 2), 0, 0, -2. + 18446744073709551616.}, // the product wraps to -2
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(c.hours, DtTimeIndex(c.count).getHours(c.rate)) << c.count << c.rate;
        EXPECT_EQ(c.minutes, DtTimeIndex(c.count).getMinutes(c.rate)) << c.count << c.rate;
        EXPECT_DOUBLE_EQ(c.seconds, DtTimeIndex(c.count).getSeconds(c.rate)) << c.count << c.rate;
    }
}

TEST(DtTimeIndex, ConvertsInEveryStyle)
{
    const struct
    {
        long long count;
        Rational from, to;
        long long towardZero, nearest, up, down, away;
    } cases[] = {
        {30000, ntsc, {30, 1}, 30030, 30030, 30030, 30030, 30030},
        {1001, ntsc, {30, 1}, 1002, 1002, 1003, 1002, 1003},
        {-1, film, pal, -1, -1, -1, -2, -2},
        {-1, {2, 1}, {1, 1}, 0, 0, 0, -1, -1}, // a half goes up
        {1, {2, 1}, {1, 1}, 0, 1, 1, 0, 1},
        {8008, {48000, 1}, ntsc, 5, 5, 5, 5, 5}, // the terms' products pass 2^31
        {7, film, {0, 1}, 0, 0, 0, 0, 0},
    };
    for (const auto& c : cases)
    {
        const DtTimeIndex index(c.count);
        EXPECT_EQ(c.towardZero, index.convert(c.from, c.to, std::round_toward_zero)) << c.count;
        EXPECT_EQ(c.nearest, index.convert(c.from, c.to, std::round_to_nearest)) << c.count;
        EXPECT_EQ(c.up, index.convert(c.from, c.to, std::round_toward_infinity)) << c.count;
        EXPECT_EQ(c.down, index.convert(c.from, c.to, std::round_toward_neg_infinity)) << c.count;
        EXPECT_EQ(c.away, index.convert(c.from, c.to, std::round_indeterminate)) << c.count;
        EXPECT_EQ(0, index.convert(c.from, c.to, static_cast<std::float_round_style>(-2)));
    }
}

TEST(DtTimeIndex, ConvertsWhatDoesNotFit)
{
    const Rational one(1, 1), two(2, 1), zero(0, 1);
    const DtTimeIndex large(greatest64 / 2 + 1);
    EXPECT_EQ(least64, large.convert(one, two, std::round_toward_zero)); // wraps around
    EXPECT_EQ(least64, large.convert(one, two, std::round_to_nearest));
    EXPECT_EQ(least64, large.convert(zero, one, std::round_to_nearest));
    // The product wraps around before the division, as the reduced factor 4/3 has it.
    EXPECT_EQ(-1, DtTimeIndex(greatest64).convert({3, 1}, {4, 1}, std::round_toward_zero));
    EXPECT_EQ(
        "Illegal zero denominator.",
        reasonOf<RationalEx::ExDenominatorZero>(
            [&] { large.convert(zero, one, std::round_toward_zero); }, "src/base/rational", 63));
    EXPECT_THROW(large.convertChecked(zero, one, std::round_to_nearest),
                 RationalEx::ExDenominatorZero);
}

TEST(DtTimeIndex, ConvertCheckedTellsExactnessAndRefusesOverflow)
{
    const struct
    {
        long long count;
        Rational from, to;
        std::float_round_style style;
        long long expected;
        bool isExact;
    } cases[] = {
        {30000, ntsc, {30, 1}, std::round_toward_zero, 30030, true},
        {1001, ntsc, {30, 1}, std::round_toward_infinity, 1003, false},
        {48, film, pal, std::round_to_nearest, 50, true},
        // Exact in integers, but not in a double.
        {(1LL << 53) + 1, film, {48, 1}, std::round_toward_zero, (1LL << 54) + 2, true},
        {(1LL << 53) + 1, film, {48, 1}, std::round_to_nearest, 1LL << 54, false},
    };
    for (const auto& c : cases)
    {
        const auto [count, isExact] = DtTimeIndex(c.count).convertChecked(c.from, c.to, c.style);
        EXPECT_EQ(c.expected, count) << c.count << c.from << c.to << c.style;
        EXPECT_EQ(c.isExact, isExact) << c.count << c.from << c.to << c.style;
    }
    const Rational one(1, 1);
    for (const DtTimeIndex index : {DtTimeIndex(least64), DtTimeIndex(greatest64)})
        EXPECT_EQ("Count does not fit in 64 bits at the new rate.",
                  reasonOf<DtEx::CountOverflow>(
                      [&] {
                          index.convertChecked(one, {2, 1});
                      },
                      "src/base/dtTimeIndex"));
    EXPECT_THROW(DtTimeIndex(least64).convertChecked(one, {-1, 1}), std::logic_error);
    EXPECT_THROW(DtTimeIndex(greatest64).convertChecked(one, one, std::round_to_nearest),
                 DtEx::CountOverflow); // rounds up to 2^63
}

// --- times --------------------------------------------------------------------------------------

TEST(DtTime, RefusesANullRate)
{
    const char* const file = "src/base/dtTime";
    const std::string reason = "Null rate not allowed in DtTime.";
    EXPECT_EQ(reason, reasonOf<DtEx::BadRate>([] { DtTime(5, Rational(0, 1)); }, file, 95));
    EXPECT_EQ(reason, reasonOf<DtEx::BadRate>([] { DtTime(5, 0, 7); }, file, 110));
    EXPECT_EQ(reason, reasonOf<DtEx::BadRate>([] { DtTime().convertRate({0, 1}); }, file, 95));
    EXPECT_THROW(DtTime(5, 24, 0), RationalEx::ExDenominatorZero);
    EXPECT_THROW(DtTime(5, 0, 7), std::logic_error);
    EXPECT_EQ("Mismatched reference clock rates.",
              std::string(DtEx::BadRefRate(KR_HERE).getReason()));
}

TEST(DtTime, ComparesAcrossRates)
{
    const DtTime two(2, 1, 1);
    EXPECT_TRUE(DtTime(48, film) == two && DtTime(48, film) <= two && !(DtTime(48, film) != two));
    EXPECT_TRUE(DtTime(47, film) < DtTime(49, pal) && DtTime(49, pal) > DtTime(47, film));
    EXPECT_TRUE(DtTime(1, -1, 1) > DtTime(1, 1, 1)); // a negative rate turns the order round
    EXPECT_EQ(1001 * 24, crossMultLhs(DtTime(1, ntsc), DtTime(1, film)));
    EXPECT_EQ(30000, crossMultRhs(DtTime(1, ntsc), DtTime(1, film)));
    EXPECT_FALSE(DtTime(48, film).isRateEqual(DtTime(50, pal)));
}

TEST(DtTime, CombinesAtTheCommonRate)
{
    const struct
    {
        DtTime a, b, sum;
    } cases[] = {
        {DtTime(24, film), DtTime(25, pal), DtTime(1200, 600, 1)},
        {DtTime(1, film), DtTime(1, film), DtTime(2, film)},
        {DtTime(1000, 1000, 1), DtTime(2000, 2000, 1), DtTime(2000000, 1000000, 1)},
        {DtTime(1, 1000, 1), DtTime(1, 1000, 1001), DtTime(1000, 1000000, 1001)},
        {DtTime(-1, -1000, 1), DtTime(3, 2000, 1), DtTime(-2500, -1000000, 1)},
        {DtTime(3, 1, 1000), DtTime(4, 1, 1001), DtTime(0, 1, 1000000)},
        {DtTime(2000, -1, 1001), DtTime(1000, 1, 1000), DtTime(1, -1, 1000000)},
        {DtTime(1, least32, 1), DtTime(1, 1, 3), DtTime(-1000000 * 3, -1000000, 1)},
    };
    for (const auto& c : cases)
    {
        const DtTime sum = c.a + c.b;
        EXPECT_EQ(print(c.sum.getRate()), print(sum.getRate())) << c.a << c.b;
        EXPECT_EQ(c.sum.getCount(), sum.getCount()) << c.a << c.b;
    }
}

TEST(DtTime, OperatesOnCounts)
{
    const DtTime a(50, pal), b(24, film); // 1200 and 600 at 600/1
    EXPECT_EQ("(600 @ (600/1=600))", print(a - b));
    EXPECT_EQ("(720000 @ (600/1=600))", print(a * b));
    EXPECT_EQ("(2 @ (600/1=600))", print(a / b));
    EXPECT_EQ("(0 @ (600/1=600))", print(a % b));
    EXPECT_EQ("(1 @ (25/1=25))", print((a * 3 + 6 - 35) % 40 / -1 + 2));
    DtTime time(5, pal);
    EXPECT_EQ(5, (time++).getCount());
    EXPECT_EQ(6, (time--).getCount());
    EXPECT_EQ(6, (++time).getCount());
    EXPECT_EQ(5, (--time).getCount());
    EXPECT_EQ(1, DtTime(1, film).convertRate(pal).getCount());
    EXPECT_EQ("(0 @ (1/1=1))", print(DtTime()));
}

TEST(DtTime, StaysAsItWasWhenAnOperationRaises)
{
    DtTime time(5, 1, 65536);
    EXPECT_THROW(time += DtTime(1, 3, 65536), RationalEx::ExDenominatorZero); // 2^32 wraps to 0
    EXPECT_THROW(time /= DtTime(0, film), ExInternalError);
    EXPECT_THROW(time %= 0, ExInternalError);
    EXPECT_EQ("(5 @ (1/65536=1.52588e-05))", print(time));
}

TEST(DtTimeUtil, CombinesExactlyOrRaises)
{
    const DtTime cd(44100, 44100, 1), studio(96000, 96000, 1);
    EXPECT_LT((cd + studio).getRate().getNumerator(), 0); // what the exact sum is for
    const struct
    {
        DtTime a, b, sum;
        int order;
    } cases[] = {
        {cd, studio, DtTime(2 * 14112000, 14112000, 1), 0},
        {DtTime(3, 30, 1001), DtTime(1, 15, 1001), DtTime(5, 30, 1001), 1},
        {DtTime(24, film), DtTime(25, pal), DtTime(1200, 600, 1), 0},
        {DtTime(-1, -24, 1), DtTime(1, film), DtTime(2, film), 0},
        {DtTime(1, -24, 1), DtTime(-2, film), DtTime(-3, film), 1},
        {DtTime(7, ntsc), DtTime(8, ntsc), DtTime(15, ntsc), -1},
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(print(c.sum), print(DtTimeUtil::getExactSum(c.a, c.b)));
        EXPECT_EQ(print(c.a),
                  print(DtTimeUtil::getExactDifference(c.sum, c.b).convertRate(c.a.getRate())));
        EXPECT_EQ(c.order, DtTimeUtil::compareExactly(c.a, c.b)) << c.a << c.b;
    }
    const DtTime most(greatest64, greatest32, 1);
    EXPECT_EQ(-1, DtTimeUtil::compareExactly(DtTime(greatest64 - 1, greatest32, 1), most));
    EXPECT_EQ(1, DtTimeUtil::compareExactly(most, DtTime(least64, 1, greatest32)));
    EXPECT_EQ(
        "No common rate of 2147483647/1 and 24/1 fits in 32 bits.",
        reasonOf<DtEx::RateOverflow>([&] { DtTimeUtil::getExactSum(most, DtTime(1, film)); }));
    EXPECT_THROW(DtTimeUtil::getExactSum(most, most), DtEx::CountOverflow);
    EXPECT_THROW(DtTimeUtil::getExactDifference(DtTime(least64, film), DtTime(1, film)),
                 std::logic_error);
}

// --- text ---------------------------------------------------------------------------------------

TEST(DtTimeUtil, TextComesBack)
{
    const DtTime times[] = {DtTime(48, film), DtTime(-3, ntsc),
                            DtTime(least64, least32, greatest32)};
    const char* const texts[] = {"48 24 1", "-3 30000 1001",
                                 "-9223372036854775808 -2147483648 2147483647"};
    for (std::size_t i = 0; i < std::size(times); ++i)
    {
        const ArrayPtr<char> text(DtTimeUtil::getDtStringFromDtTime(times[i]));
        EXPECT_STREQ(texts[i], text.get());
        const DtTime back = DtTimeUtil::getDtTimeFromDtString(text.get());
        EXPECT_EQ(times[i].getCount(), back.getCount());
        EXPECT_EQ(times[i].getRate(), back.getRate());
    }
}

TEST(DtTimeUtil, ReadsTextLeniently)
{
    const struct
    {
        const char* text;
        DtTime time;
    } cases[] = {
        {"10 24x 1", DtTime(10, film)},
        {"  10   24  1  more 3", DtTime(10, film)},
        {"+10 +24 +1", DtTime(10, film)},
        {"\t10 \n24 \r1", DtTime(10, film)},
        {"-+5 24 1", DtTime(0, film)},
        {"9223372036854775807 -24 -1", DtTime(greatest64, film)},
        {"9223372036854775808 24 1", DtTime(0, film)}, // not a 64-bit integer
        {"1 010 1", DtTime(1, 10, 1)},
    };
    for (const auto& c : cases)
    {
        const DtTime time = DtTimeUtil::getDtTimeFromDtString(c.text);
        EXPECT_EQ(c.time.getCount(), time.getCount()) << c.text;
        EXPECT_EQ(c.time.getRate(), time.getRate()) << c.text;
    }
}

TEST(DtTimeUtil, RefusesBadText)
{
    using Error = DtEx::DtStringError;
    const struct
    {
        const char* text;
        int code, line;
        const char* fault;
    } cases[] = {
        {"10 abc 1", 0, 111, "Rate numerator malformed."},
        {"10 + 1", 0, 111, "Rate numerator malformed."},
        {"", 0, 111, "Rate numerator malformed."},
        {"10 2147483648 1", 1, 106, "Rate numerator overflow."},
        {"10 -2147483649 x", 1, 106, "Rate numerator overflow."},
        {"10 24", 2, 126, "Rate denominator malformed."},
        {"10 0 1234567890123", 3, 121, "Rate denominator overflow."},
    };
    for (const auto& c : cases)
    {
        int code = -1;
        const auto read = [&]
        {
            try
            {
                DtTimeUtil::getDtTimeFromDtString(c.text);
            }
            catch (const Error& error)
            {
                code = error.getErrorCode();
                throw;
            }
        };
        EXPECT_EQ(std::string("DtString conversion error: ") + c.fault,
                  reasonOf<Error>(read, "src/base/dtTimeUtil", c.line))
            << c.text;
        EXPECT_EQ(c.code, code) << c.text;
    }
    EXPECT_THROW(DtTimeUtil::getDtTimeFromDtString("10 24 0"), RationalEx::ExDenominatorZero);
    EXPECT_THROW(DtTimeUtil::getDtTimeFromDtString("10 0 1"), DtEx::BadRate);
    EXPECT_THROW(DtTimeUtil::getDtTimeFromDtString(nullptr), ExInternalError);
    const Error unknown(KR_HERE, static_cast<Error::ErrorCode>(7));
    EXPECT_STREQ("DtString conversion error: Unknown error.", unknown.what());
}

// --- seconds ------------------------------------------------------------------------------------

TEST(DtTimeUtil, ConvertsSeconds)
{
    EXPECT_EQ(47, DtTimeUtil::getDtTimeFromSeconds(film, 1.99).getCount());
    EXPECT_EQ(-47, DtTimeUtil::getDtTimeFromSeconds(film, -1.99F).getCount());
    EXPECT_EQ(least64, DtTimeUtil::getDtTimeFromSeconds(film, 1e30).getCount());
    EXPECT_EQ(
        least64,
        DtTimeUtil::getDtTimeFromSeconds(film, std::numeric_limits<float>::quiet_NaN()).getCount());
    EXPECT_THROW(DtTimeUtil::getDtTimeFromSeconds({0, 1}, 1.), DtEx::BadRate);
    EXPECT_EQ(30000 * (1001. / 30000), DtTimeUtil::getSecondsDouble(DtTime(30000, ntsc)));
    EXPECT_EQ(0.5F, DtTimeUtil::getSecondsFloat(DtTime(12, film)));
    int lost = 0;
    for (long long count = 0; count < 1000; ++count)
    {
        const double seconds = DtTimeUtil::getSecondsDouble(DtTime(count, film));
        lost += DtTimeUtil::getDtTimeFromSeconds(film, seconds).getCount() != count ? 1 : 0;
        ASSERT_EQ(
            count,
            DtTimeUtil::getDtTimeFromSeconds(film, seconds, std::round_to_nearest).getCount());
    }
    EXPECT_EQ(162, lost);
    EXPECT_EQ(48,
              DtTimeUtil::getDtTimeFromSeconds(film, 1.99F, std::round_toward_infinity).getCount());
}

TEST(DtTimeUtil, ConvertsIntervals)
{
    const DtTime time(0, film);
    const struct
    {
        double lower, upper;
        long long first, last;
    } cases[] = {{.5, 1., 12, 24},
                 {.51, .99, 13, 23},
                 {-.99, -.51, -23, -12},
                 {1., 1e30, 24, greatest64},
                 {-.5, .5, -12, 12}};
    for (const auto& c : cases)
    {
        const auto indices =
            DtTimeUtil::getInclusiveDtTimeIndexInterval(time, Interval<double>(c.lower, c.upper));
        EXPECT_EQ(c.first, indices.getLower());
        EXPECT_EQ(c.last, indices.getUpper());
        const auto same = DtTimeUtil::getInclusiveDtTimeIndexInterval(
            time, Interval<float>(static_cast<float>(c.lower), static_cast<float>(c.upper)));
        EXPECT_EQ(c.first, same.getLower());
        EXPECT_EQ(c.last, same.getUpper());
    }
    EXPECT_TRUE(
        DtTimeUtil::getInclusiveDtTimeIndexInterval(time, Interval<double>(.51, .54)).isEmpty());
    const Interval<DtTimeIndex> indices(-12, 36);
    EXPECT_EQ(-.5, DtTimeUtil::getSecondsIntervalDouble(time, indices).getLower());
    EXPECT_EQ(1.5F, DtTimeUtil::getSecondsIntervalFloat(time, indices).getUpper());
}

TEST(DtTimeChrono, ConvertsBothWays)
{
    using namespace std::chrono_literals;
    using ShortSeconds = std::chrono::duration<std::int16_t>;
    const DtTime frame = DtTimeChrono::getDtTime(40ms, pal);
    EXPECT_EQ(1, frame.getCount());
    EXPECT_EQ(0, DtTimeChrono::getDtTime(-39ms, pal).getCount());
    EXPECT_EQ(-1, DtTimeChrono::getDtTime(-.0401s, pal).getCount());
    EXPECT_EQ(DtTime(7, 1, 3600), DtTimeChrono::getDtTime(7h));
    EXPECT_EQ(40000us, DtTimeChrono::getDuration<std::chrono::microseconds>(frame));
    EXPECT_EQ(33366666ns, DtTimeChrono::getDuration<std::chrono::nanoseconds>(DtTime(1, ntsc)));
    EXPECT_EQ(.04, DtTimeChrono::getDuration<std::chrono::duration<double>>(frame).count());
    EXPECT_EQ(-32768, DtTimeChrono::getDuration<ShortSeconds>(DtTime(-32768, 1, 1)).count());
    EXPECT_THROW(DtTimeChrono::getDuration<ShortSeconds>(DtTime(32768, 1, 1)), DtEx::CountOverflow);
    EXPECT_THROW(DtTimeChrono::getDuration<std::chrono::nanoseconds>(DtTime(greatest64, film)),
                 DtEx::CountOverflow);
    EXPECT_THROW(DtTimeChrono::getDtTime(1e30s, film), DtEx::CountOverflow);
    const std::chrono::duration<std::uint64_t> large(std::numeric_limits<std::uint64_t>::max());
    EXPECT_THROW(DtTimeChrono::getDtTime(large), DtEx::CountOverflow);
}

// --- time code ----------------------------------------------------------------------------------

TEST(DtTimeCode, WritesAndReads)
{
    const struct
    {
        Rational rate;
        long long count;
        const char* text;
    } cases[] = {
        {film, 0, "00:00:00:00"},
        {film, -25, "-00:00:01:01"},
        {pal, 25LL * 3600 * 100 + 24, "100:00:00:24"},
        {{1, 1}, 86399, "23:59:59:00"},
        {{120, 1}, 119, "00:00:00:119"},
        {{1000, 1}, 1000 * 61 + 7, "00:01:01:007"},
        {ntsc, 17982, "00:10:00;00"},
        {ntsc, 107892, "01:00:00;00"},
        {ntsc, 2589407, "23:59:59;29"},
        {ntsc, -1800, "-00:01:00;02"},
        {ntscDouble, 5178816, "24:00:00;00"},
        {{24000, 1001}, 86400, "01:00:00:00"},
        {film, least64, "-106751991167300:38:45:08"},
        {{1, 1}, greatest64, "2562047788015215:30:07:00"},
    };
    for (const auto& c : cases)
    {
        const DtTimeCode code(c.rate);
        EXPECT_EQ(c.text, code.getText(c.count));
        EXPECT_EQ(c.count, code.getCount(c.text)) << c.text;
    }
    EXPECT_EQ("01:00:00:00", DtTimeCode(ntsc, DtTimeCode::NonDrop).getText(108000));
    EXPECT_EQ(25, DtTimeCode(film).getCount("0:00:01:01"));
    EXPECT_EQ(0, DtTimeCode(film).getCount("-00:00:00:00"));
    EXPECT_EQ(pal, DtTimeCode(pal).getDtTime("00:00:01:00").getRate());
}

/// Counts the frame numbers of a day one by one, skipping the dropped ones.
TEST(DtTimeCode, AgreesWithCountingFrameByFrame)
{
    for (const int nominal : {30, 60})
    {
        const DtTimeCode code(nominal == 30 ? ntsc : ntscDouble);
        long long count = 0;
        for (int second = 0; second < 24 * 3600; ++second)
        {
            const bool drops = second % 60 == 0 && second / 60 % 10 != 0;
            for (int frame = drops ? nominal / 15 : 0; frame < nominal; ++frame, ++count)
            {
                char expected[32];
                std::snprintf(expected, sizeof(expected), "%02d:%02d:%02d;%02d", second / 3600,
                              second / 60 % 60, second % 60, frame);
                ASSERT_EQ(expected, code.getText(count));
                ASSERT_EQ(count, code.getCount(expected));
            }
        }
        EXPECT_EQ(nominal * 24 * 3600 - nominal / 15 * 9 * 6 * 24, count);
    }
}

TEST(DtTimeCode, SaysWhatIsWrong)
{
    const struct
    {
        Rational rate;
        const char* text;
        const char* fault;
    } cases[] = {
        {film, "", "hours are not a number"},
        {film, "-", "hours are not a number"},
        {film, "+01:00:00:00", "hours are not a number"},
        {film, "01", "':' expected before the minutes"},
        {film, "01:0:00:00", "minutes are not 2 digits"},
        {film, "01:60:00:00", "minutes above 59"},
        {film, "01:00.00:00", "':' expected before the seconds"},
        {film, "01:00:7", "seconds are not 2 digits"},
        {film, "01:00:60:00", "seconds above 59"},
        {film, "01:00:00;00", "':' expected before the frames"},
        {ntsc, "01:00:00:00", "';' expected before the frames"},
        {film, "01:00:00:24", "frames above 23"},
        {film, "01:00:00:", "frames are not 2 digits"},
        {{120, 1}, "01:00:00:24", "frames are not 3 digits"},
        {film, "01:00:00:000", "more text after the frames"},
        {ntsc, "00:01:00;01", "this frame number is dropped at the start of the minute"},
        {ntscDouble, "10:59:00;03", "this frame number is dropped at the start of the minute"},
        {film, "106751991167300:38:45:08", "the count does not fit in 64 bits"},
        {film, "-106751991167300:38:45:09", "the count does not fit in 64 bits"},
        {film, "99999999999999999999:00:00:00", "the count does not fit in 64 bits"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(std::string("Time code '") + c.text + "': " + c.fault + ".",
                  reasonOf<DtEx::BadTimeCode>([&] { DtTimeCode(c.rate).getCount(c.text); },
                                              "src/base/dtTimeCode"));
    EXPECT_THROW(DtTimeCode(film).getCount(nullptr), ExInternalError);
    EXPECT_EQ("No drop-frame time code at the rate 25/1.",
              reasonOf<DtEx::NoTimeCode>([] { DtTimeCode(pal, DtTimeCode::DropFrame); },
                                         "src/base/dtTimeCode"));
    for (const Rational& rate : {Rational(0, 1), Rational(-24, 1), Rational(25, 2),
                                 Rational(1001, 1000), Rational(least32, 1)})
        EXPECT_FALSE(DtTimeCode::isAvailable(rate, DtTimeCode::NonDrop)) << rate;
    EXPECT_THROW(DtTimeCode(Rational(25, 2)), std::logic_error);
}

// --- many values --------------------------------------------------------------------------------

/// Values that break arithmetic: the ends of the range, common rates, neighbours, all magnitudes.
class AdversarialValues
{
public:
    std::uint64_t getBits()
    {
        _state += 0x9E3779B97F4A7C15; // SplitMix64 (Steele, Lea, Flood 2014)
        std::uint64_t bits = _state;
        bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9;
        bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EB;
        return bits ^ (bits >> 31);
    }

    long long getCount()
    {
        const std::uint64_t kind = getBits();
        const long long offset = static_cast<long long>(kind >> 60);
        switch (kind % 8)
        {
        case 0:
            return least64 + offset;
        case 1:
            return greatest64 - offset;
        default:
            return static_cast<long long>(getBits()) >> (kind >> 8) % 64;
        }
    }

    std::int32_t getTerm()
    {
        static const std::int32_t usual[] = {
            1,     2,  24,    25,    30, 1000,       1001,           24000,   30000,      48000,
            60000, -1, 90000, 44100, 7,  greatest32, greatest32 - 1, least32, least32 + 1};
        const std::uint64_t kind = getBits();
        if (kind % 4 != 0)
            return usual[(kind >> 8) % std::size(usual)];
        const auto term = static_cast<std::int32_t>(static_cast<std::uint32_t>(getBits()));
        const std::int32_t scaled = term >> (kind >> 8) % 32;
        return scaled == 0 ? 1 : scaled;
    }

    Rational getRate() { return Rational(getTerm(), getTerm()); }

private:
    std::uint64_t _state = 1;
};

/// FNV-1a of everything added.
class Digest
{
public:
    void add(std::uint64_t value)
    {
        for (int byte = 0; byte < 8; ++byte)
            addByte(static_cast<unsigned char>(value >> (8 * byte)));
    }
    void add(double value)
    {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof(bits));
        add(bits);
    }
    void add(const std::string& text)
    {
        for (const char c : text)
            addByte(static_cast<unsigned char>(c));
    }
    std::uint64_t get() const { return _value; }

private:
    void addByte(unsigned char byte) { _value = (_value ^ byte) * 0x100000001B3; }

    std::uint64_t _value = 0xCBF29CE484222325;
};

#ifdef __SIZEOF_INT128__

__extension__ using Wide = __int128;

bool fits(Wide value)
{
    return value >= least64 && value <= greatest64;
}

TEST(ManyValues, ConversionsAgreeWith128BitIntegers)
{
    AdversarialValues values;
    int overflows = 0;
    for (int i = 0; i < 3000000; ++i)
    {
        const DtTimeIndex index(values.getCount());
        const Rational from = values.getRate();
        const Rational to =
            i % 8 == 0 ? Rational(from.getNumerator(), values.getTerm()) : values.getRate();
        const Wide numerator = Wide(from.getDenominator()) * to.getNumerator();
        const Wide denominator = Wide(from.getNumerator()) * to.getDenominator();
        const Wide product = Wide(index) * numerator;
        const Wide exact = product / denominator;
        const DtTimeIndex converted = index.convert(from, to, std::round_toward_zero);
        if (fits(exact))
        {
            ASSERT_EQ(static_cast<long long>(exact), converted) << index << from << to;
            const auto checked = index.convertChecked(from, to);
            ASSERT_EQ(converted, checked.count) << index << from << to;
            ASSERT_EQ(product % denominator == 0, checked.isExact) << index << from << to;
            continue;
        }
        ++overflows;
        if (overflows % 64 == 0)
        {
            ASSERT_THROW(index.convertChecked(from, to), DtEx::CountOverflow);
        }
    }
    EXPECT_GT(overflows, 100000);
}

TEST(ManyValues, ComparisonsAgreeWith128BitIntegers)
{
    AdversarialValues values;
    int fitting = 0;
    for (int i = 0; i < 3000000; ++i)
    {
        const Rational rate = values.getRate();
        const DtTime a(values.getCount(), rate);
        const DtTime b = i % 2 == 0 ? DtTime(values.getCount(), values.getRate())
                                    : a.convertRate(values.getRate()) + i % 3; // near-equal
        const Rational other = b.getRate();
        const Wide lhs = Wide(a.getCount()) * rate.getDenominator() * other.getNumerator();
        const Wide rhs = Wide(b.getCount()) * other.getDenominator() * rate.getNumerator();
        ASSERT_EQ(static_cast<long long>(static_cast<std::uint64_t>(lhs)), crossMultLhs(a, b));
        ASSERT_EQ(static_cast<long long>(static_cast<std::uint64_t>(rhs)), crossMultRhs(a, b));
        if (rate.getNumerator() > 0 && other.getNumerator() > 0)
        {
            ASSERT_EQ((lhs > rhs) - (lhs < rhs), DtTimeUtil::compareExactly(a, b)) << a << b;
        }
        if (!fits(lhs) || !fits(rhs))
            continue;
        ++fitting;
        ASSERT_EQ(lhs < rhs, a < b) << a << b;
        ASSERT_TRUE((lhs <= rhs) == (a <= b) && (lhs == rhs) == (a == b)) << a << b;
        ASSERT_TRUE((lhs != rhs) == (a != b) && (lhs >= rhs) == (a >= b)) << a << b;
        ASSERT_EQ(lhs > rhs, a > b) << a << b;
    }
    EXPECT_GT(fitting, 500000);
}

#endif

/// The stated rate of a combination, in 32-bit arithmetic from end to end.
Rational getCommonRate(const Rational& a, const Rational& b)
{
    const auto multiply = [](std::int32_t x, std::int32_t y)
    { return static_cast<std::int32_t>(static_cast<std::uint32_t>(std::int64_t{x} * y)); };
    const Rational product(multiply(a.getNumerator(), b.getNumerator()),
                           multiply(a.getDenominator(), b.getDenominator()));
    const std::int32_t sign = product.getNumerator() > 0 ? 1 : -1;
    if (std::abs(std::int64_t{product.getNumerator()}) >= 1000001)
        return Rational(sign * 1000000, 1);
    return product.getDenominator() >= 1000001 ? Rational(sign, 1000000) : product;
}

/// Whatever road a sum takes, it is that of both times converted to the common rate.
TEST(ManyValues, SumsAreThoseOfTheConvertedTimes)
{
    AdversarialValues values;
    int refusals = 0;
    for (int i = 0; i < 500000; ++i)
    {
        const DtTime a(values.getCount(), values.getRate());
        const DtTime b(values.getCount(), values.getRate());
        try
        {
            const DtTime sum = a + b;
            const Rational rate = sum.getRate();
            ASSERT_EQ(a.isRateEqual(b) ? a.getRate() : getCommonRate(a.getRate(), b.getRate()),
                      rate)
                << a << b;
            ASSERT_EQ(a.convertRate(rate).getCount() + b.convertRate(rate).getCount(),
                      sum.getCount())
                << a << b;
        }
        catch (const ExBase&) // a product of terms wrapped around to zero
        {
            ++refusals;
        }
    }
    EXPECT_LT(refusals, 50000);
}

/// The same figure has to come out on every machine that the library is built for.
TEST(ManyValues, DigestIsTheSameEverywhere)
{
    AdversarialValues values;
    Digest digest;
    for (int i = 0; i < 200000; ++i)
    {
        const DtTime a(values.getCount(), values.getRate());
        const DtTime b(values.getCount(), values.getRate());
        const double seconds = DtTimeUtil::getSecondsDouble(a);
        digest.add(print(a));
        digest.add(ArrayPtr<char>(DtTimeUtil::getDtStringFromDtTime(b)).get());
        for (int style = -1; style <= 3; ++style)
            digest.add(static_cast<std::uint64_t>(static_cast<long long>(a.getCount().convert(
                a.getRate(), b.getRate(), static_cast<std::float_round_style>(style)))));
        digest.add(static_cast<std::uint64_t>(a < b) << 1 | static_cast<std::uint64_t>(a >= b));
        digest.add(seconds);
        digest.add(static_cast<double>(DtTimeUtil::getSecondsFloat(b)));
        digest.add(a.getCount().getSeconds(b.getRate()));
        digest.add(static_cast<std::uint64_t>(static_cast<long long>(
            DtTimeUtil::getDtTimeFromSeconds(b.getRate(), seconds).getCount())));
        digest.add(DtTimeCode(i % 2 == 0 ? ntsc : ntscDouble).getText(a.getCount()));
        digest.add(FloatUtil::round(seconds));
        digest.add(FloatUtil::mod(seconds, 1.0000001));
        digest.add(FloatUtil::hypot(seconds, a.getRate().getDouble()));
        digest.add(FloatUtil::degreesToRadians(seconds));
        digest.add(static_cast<double>(FloatUtil::smoothStep(
            -1.F, 1.F, static_cast<float>(i % 2001 - 1000) / 999.F, 3.F, a.getRate().getFloat())));
    }
    EXPECT_EQ(14145245486688921832U, digest.get());
}

} // namespace

} // namespace Kr
