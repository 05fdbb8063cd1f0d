#include "assertionCheck.h"

#include <base/dtRefClockEx.h>
#include <base/dtRefTime.h>
#include <base/dtTimeMark.h>
#include <base/hwCounter.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace
{

using Kr::DtRefTime;
using Kr::DtRefTimeFactory;
using Kr::DtTime;
using Kr::DtTimeIndex;
using Kr::DtTimeMark;
using Kr::Rational;

DtRefTimeFactory& clock()
{
    return DtRefTimeFactory::getInstance();
}

/// The clock's ticks per second.
long long ticksPerSecond()
{
    return Kr::HwCounter::getRateNumerator();
}

DtRefTime at(long long count)
{
    return clock().create(DtTimeIndex(count), "HwCounter");
}

template <class Value>
std::string textOf(const Value& value)
{
    std::ostringstream text;
    text << value;
    return text.str();
}

TEST(RefTime, TheSourceCountsFromWhenItWasMade)
{
    const unsigned long long before = Kr::HwCounter::timeStamp();
    const Kr::DtRefClockSourceHwCounter source;
    const long long first = source.getCount();
    const unsigned long long after = Kr::HwCounter::timeStamp();
    EXPECT_GE(first, 0);
    EXPECT_LE(first, static_cast<long long>(after - before));
    EXPECT_STREQ("HwCounter", source.getName());
    EXPECT_EQ(Rational(Kr::HwCounter::getRateNumerator(), 1), source.getRate());
}

TEST(RefTime, NowDoesNotDecrease)
{
    EXPECT_EQ(&clock(), &clock());
    DtRefTime previous = clock().create();
    EXPECT_EQ(clock().getClockSource().getRate(), previous.getRate());
    for (int i = 0; i < 1000; ++i)
    {
        const DtRefTime now = clock().create();
        ASSERT_GE(now.getCount(), previous.getCount());
        previous = now;
    }
}

TEST(RefTime, FromACountOfTheNamedSource)
{
    EXPECT_EQ(5, at(5).getCount());
    EXPECT_EQ(clock().getClockSource().getRate(), at(5).getRate());
    for (const char* name : {"hwcounter", "HwCounter ", "", static_cast<const char*>(nullptr)})
    {
        try
        {
            clock().create(DtTimeIndex(5), name);
            FAIL() << "the clock has no such name";
        }
        catch (const Kr::DtRefClockEx::SourceMismatch& error)
        {
            EXPECT_STREQ("Clock source name does not match system reference clock.", error.what());
            EXPECT_STREQ("src/base/dtRefTime", error.getFileName());
        }
    }
    EXPECT_STREQ("Reference clock failed to get clock value.",
                 Kr::DtRefClockEx::GetCount(KR_HERE).what());
}

TEST(RefTime, FromAnOffsetAtAnotherRate)
{
    const long long rate = ticksPerSecond();
    EXPECT_EQ(7 + 2 * rate, clock().create(at(7), 2, Rational()).getCount());
    EXPECT_EQ(7 - rate / 3, clock().create(at(7), -1, Rational(3, 1)).getCount());
    EXPECT_EQ(rate * 1001 / 30000, clock().create(at(0), 1, Rational(30000, 1001)).getCount());
    expectAssertion("refTime.getRate() == _source->getRate()", "src/base/dtRefTime", 151,
                    [] { clock().create(DtRefTime(), 1, Rational()); });
}

TEST(RefTime, InText)
{
    EXPECT_EQ("(0 @ (1/1=1))", textOf(DtRefTime()));
    EXPECT_EQ("(-5 @ " + textOf(at(0).getRate()) + ")", textOf(at(-5)));
    EXPECT_EQ("((48 @ (24/1=24)) (0 @ (1/1=1)))",
              textOf(DtTimeMark(DtTime(48, 24, 1), DtRefTime())));
}

// Marks

TEST(TimeMark, StreamTimeAtAReferenceTime)
{
    const long long rate = ticksPerSecond();
    const long long frame = (rate + 24) / 25; // the first tick at which frame 1 is due
    struct Case
    {
        long long refCount;
        long long streamCount;
    };
    const Case cases[] = {
        {0, 0},         {rate, 25},   {rate * 39 / 1000, 0},  {frame, 1},
        {frame - 1, 0}, {-rate, -25}, {-rate * 39 / 1000, 0}, {rate * 86400, 25 * 86400},
    };
    const DtTimeMark start(DtTime(0, 25, 1), at(0));
    const DtTimeMark shifted(DtTime(1000, 25, 1), at(12345));
    for (const Case& entry : cases)
    {
        const DtTimeMark mark = start.evalTime(at(entry.refCount));
        EXPECT_EQ(entry.streamCount, mark.getStreamTime().getCount()) << entry.refCount;
        EXPECT_EQ(Rational(25, 1), mark.getStreamTime().getRate());
        EXPECT_EQ(entry.refCount, mark.getRefTime().getCount());
        EXPECT_EQ(1000 + entry.streamCount,
                  shifted.evalTime(at(12345 + entry.refCount)).getStreamTime().getCount());
    }
}

TEST(TimeMark, ReferenceTimeAtAStreamTime)
{
    const long long rate = ticksPerSecond();
    const DtTimeMark mark(DtTime(1000, 25, 1), at(100));
    const DtTimeMark sameRate = mark.evalTime(DtTime(1025, 25, 1));
    EXPECT_EQ(100 + rate, sameRate.getRefTime().getCount());
    EXPECT_EQ(1025, sameRate.getStreamTime().getCount());
    EXPECT_EQ(100 - rate / 25, mark.evalTime(DtTime(999, 25, 1)).getRefTime().getCount());

    // 41.98 seconds are 1049.5 frames; the half is dropped before anything is measured.
    const DtTimeMark otherRate = mark.evalTime(DtTime(2099, 50, 1));
    EXPECT_EQ(100 + 49 * rate / 25, otherRate.getRefTime().getCount());
    EXPECT_EQ(Rational(50, 1), otherRate.getStreamTime().getRate());

    for (long long count = 1000; count < 10000000000; count = count * 3 + 1)
    {
        const DtTimeMark there = mark.evalTime(DtTime(count, 25, 1));
        const long long back = mark.evalTime(there.getRefTime()).getStreamTime().getCount();
        EXPECT_TRUE(back == count || back == count - 1) << count << " came back as " << back;
    }
}

TEST(TimeMark, RatesThatDoNotMatch)
{
    const DtTimeMark mark(DtTime(0, 25, 1), at(0));
    expectAssertion("refTime.getRate() == _refTime.getRate()", "src/base/dtTimeMark", 62,
                    [&] { mark.evalTime(DtRefTime()); });
    EXPECT_THROW(DtTimeMark().evalTime(DtTime(1, 25, 1)), Kr::ExInternalError);
    EXPECT_EQ(0, DtTimeMark().evalTime(DtRefTime()).getStreamTime().getCount());
}

} // namespace
