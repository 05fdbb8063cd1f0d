#include "allocationCount.h"

#include <base/hwCounter.h>
#include <base/hwIntervalTimer.h>
#include <base/internal/clocks/hwCounterIA32.h>
#include <base/internal/errors/sourcePosition.h>
#include <base/internal/os/osCpuInfoWinNT.h>
#include <base/internal/os/osMemoryArchImp.h>
#include <base/internal/os/osProcessorReader.h>
#include <base/osCpuInfo.h>
#include <base/osEndian.h>
#include <base/osMemoryArch.h>
#include <base/osMemoryArchEx.h>
#include <base/osProcessor.h>
#include <base/todIntervalTimer.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <limits>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Kr::HwCounter;
using Kr::OsCpuInfo;
using Kr::OsCpuRegisters;

// The processor

/// A processor that gives these answers; leaf 2 gives the next one at each query.
class RecordedProcessor : public Kr::OsCpuIdentification
{
public:
    RecordedProcessor(std::uint32_t maximumLeaf, const OsCpuRegisters& version,
                      std::vector<OsCpuRegisters> descriptors)
        : _maximumLeaf(maximumLeaf)
        , _version(version)
        , _descriptors(std::move(descriptors))
    {
    }

    OsCpuRegisters query(std::uint32_t leaf) override
    {
        EXPECT_LE(leaf, _maximumLeaf);
        if (leaf == 0)
            return {_maximumLeaf, 0, 0, 0};
        return leaf == 1 ? _version : _descriptors.at(_next++);
    }

    std::size_t getDescriptorQueries() const { return _next; }

private:
    std::uint32_t _maximumLeaf;
    OsCpuRegisters _version;
    std::vector<OsCpuRegisters> _descriptors;
    std::size_t _next = 0;
};

/// What a processor's descriptors tell, as text.
std::string describe(RecordedProcessor& processor)
{
    OsCpuInfo::CacheInfo l1Data;
    OsCpuInfo::CacheInfo l1Instruction;
    OsCpuInfo::CacheInfo l2;
    int page = -1;
    Kr::OsCpuInfoWinNT::getMemoryInfo(processor, &l1Data, &l1Instruction, &l2, &page);
    std::ostringstream text;
    for (const OsCpuInfo::CacheInfo& cache : {l1Data, l1Instruction, l2})
        text << cache._size << '/' << cache._associativity << '/' << cache._lineSize << ' ';
    text << page;
    return text.str();
}

TEST(Machine, CacheDescriptors)
{
    struct Case
    {
        const char* processor;
        std::vector<OsCpuRegisters> answers;
        const char* expected; // level 1 data, level 1 instruction, level 2, page size
        std::size_t queries = 1;
    };
    const char* const nothing = "0/1/0 0/1/0 0/1/0 0";
    const Case cases[] = {
        {"recorded, 1997",
         {{0x03020101, 0, 0, 0x06040A42}},
         "8192/2/32 8192/4/32 262144/4/32 4096"},
        {"recorded, 1998",
         {{0x03020101, 0, 0, 0x0C040843}},
         "16384/2/32 16384/4/32 524288/4/32 4096"},
        {"recorded, 1999",
         {{0x03020101, 0, 0, 0x0C040882}},
         "16384/2/32 16384/4/32 262144/8/32 4096"},
        {"recorded, 2000: no old descriptor but one", {{0x665B5101, 0, 0, 0x007A7040}}, nothing},
        {"the low byte is no descriptor", {{0x00000001, 0, 0, 0}}, nothing},
        {"every register",
         {{0x0A000001, 0x04, 0x45000000, 0x0600}},
         "8192/2/32 8192/4/32 2097152/4/32 4096"},
        {"first register not valid", {{0x80000A01, 0x0A, 0, 0}}, nothing},
        {"only the first register's validity counts",
         {{0x01, 0x80000041, 0, 0}},
         "0/1/0 0/1/0 131072/4/32 0"},
        {"second round: all but the last register",
         {{0x02, 0, 0, 0x44}, {0x80000A99, 0x08, 0x03, 0x030A0641}},
         "8192/2/32 16384/4/32 1048576/4/32 4096",
         2},
        {"three rounds",
         {{0x03, 0, 0, 0}, {0, 0, 0, 0}, {0x0C00, 0, 0, 0}},
         "16384/2/32 0/1/0 0/1/0 0",
         3},
    };
    for (const Case& entry : cases)
    {
        RecordedProcessor processor(2, {}, entry.answers);
        EXPECT_EQ(entry.expected, describe(processor)) << entry.processor;
        EXPECT_EQ(entry.queries, processor.getDescriptorQueries()) << entry.processor;
    }
    RecordedProcessor old(1, {}, {});
    EXPECT_EQ(nothing, describe(old));
}

TEST(Machine, ACacheDescribedTwiceFailsTheRuntimesAssertion)
{
    RecordedProcessor twice(2, {}, {{0x42410001, 0, 0, 0}});
    EXPECT_DEBUG_DEATH(describe(twice), "l2Unified->_size == 0");
    RecordedProcessor thirdRegisterOfSecondRound(2, {}, {{0x02, 0, 0, 0}, {0, 0, 0x0A, 0}});
    EXPECT_DEBUG_DEATH(describe(thirdRegisterOfSecondRound), "l1Data->_size == 0");
}

TEST(Machine, VersionAndFeatures)
{
    // A recorded answer of 2000: family 6, model 8, stepping 10, with MMX and SSE.
    RecordedProcessor processor(2, {0x0000068A, 0, 0, 0x0383F9FF}, {});
    int family = -1;
    int model = -1;
    int stepping = -1;
    Kr::OsCpuInfoWinNT::getVersion(processor, &family, &model, &stepping);
    EXPECT_EQ(6, family);
    EXPECT_EQ(8, model);
    EXPECT_EQ(10, stepping);

    // The extended fields of a recorded answer of 2012 are left out: model 0x3A is told as 10.
    RecordedProcessor extended(13, {0x000306A9, 0, 0, 0x01000000}, {});
    Kr::OsCpuInfoWinNT::getVersion(extended, nullptr, &model, nullptr);
    EXPECT_EQ(10, model);
    bool hasMMX = false;
    bool hasSSE = false;
    Kr::OsCpuInfoWinNT::getFeatures(processor, &hasMMX, &hasSSE);
    EXPECT_TRUE(hasMMX && hasSSE);
    Kr::OsCpuInfoWinNT::getFeatures(extended, &hasMMX, &hasSSE);
    EXPECT_FALSE(hasMMX || hasSSE);

    RecordedProcessor silent(0, {}, {});
    Kr::OsCpuInfoWinNT::getVersion(silent, &family, nullptr, nullptr);
    EXPECT_EQ(6, family);
    Kr::OsCpuInfoWinNT::getFeatures(silent, &hasMMX, &hasSSE);
    EXPECT_FALSE(hasMMX || hasSSE);
}

TEST(Machine, MemoryArchitecture)
{
    const Kr::OsMemoryArchImp described({16384, 2, 32}, {262144, 8, 64}, 4096);
    const Kr::OsMemoryArch& memory = described;
    EXPECT_EQ(262144, memory.getL2Size());
    EXPECT_EQ(8192, memory.getL1DataWaySize());
    EXPECT_EQ(32768, memory.getL2WaySize());
    EXPECT_EQ(32, memory.getL1DataLineSize());
    EXPECT_EQ(64, memory.getL2LineSize());
    EXPECT_EQ(4096, memory.getPageSize());

    const Kr::OsMemoryArch& machine = Kr::OsMemoryArch::getInstance();
    EXPECT_EQ(&machine, &Kr::OsMemoryArch::getInstance());
    EXPECT_EQ(268435456, machine.getMemorySpan());
    EXPECT_EQ(8, machine.getReserved());
    EXPECT_STREQ("Unknown CPU Type: Can not compute memory architecture parameters.",
                 Kr::OsMemoryArchEx::ExUnknownCPU(KR_HERE).what());
    EXPECT_STREQ("Unknown CPU Board Type: Can not compute memory architecture parameters.",
                 Kr::OsMemoryArchEx::ExUnknownCPUBoard(KR_HERE).what());
}

/// What a processor answers to a leaf and its subleaf.
struct Answer
{
    std::uint32_t leaf, subleaf;
    OsCpuRegisters registers;
};

Kr::OsProcessor readProcessor(const std::vector<Answer>& answers, std::uint64_t enabledSets)
{
    return Kr::OsProcessorReader::read(
        [&](std::uint32_t leaf, std::uint32_t subleaf)
        {
            for (const Answer& answer : answers)
                if (answer.leaf == leaf && answer.subleaf == subleaf)
                    return answer.registers;
            return OsCpuRegisters{0, 0, 0, 0};
        },
        enabledSets);
}

/// Answers as the manual has them, of four cores with two threads each.
TEST(Processor, ReadsTheLeavesOfToday)
{
    using Kr::OsProcessor;
    const std::vector<Answer> answers = {
        {0, 0, {0x1B, 0x756E6547, 0x6C65746E, 0x49656E69}},
        {1, 0, {0x000806C1, 0x00100800, 0x7FFAFBBF, 0xBFEBFBFF}},
        {4, 0, {0x1C004121, 0x02C0003F, 0x3F, 0}},
        {4, 1, {0x1C004122, 0x01C0003F, 0x3F, 0}},
        {4, 2, {0x1C004143, 0x04C0003F, 0x3FF, 0}},
        {4, 3, {0x1C03C163, 0x02C0003F, 0x3FFF, 4}},
        {7, 0, {0, 0xF3BFA7EB, 0x18C05FCE, 0xFC100510}},
        {0xB, 0, {1, 2, 0x100, 0}},
        {0xB, 1, {4, 8, 0x201, 0}},
        {0x80000000, 0, {0x80000008, 0, 0, 0}},
        {0x80000001, 0, {0, 0, 0x121, 0x2C100800}},
        {0x80000002, 0, {0x20202020, 0x20646C4F, 0x20555043, 0x20202020}}};
    const OsProcessor processor = readProcessor(answers, 0xE7);
    EXPECT_EQ("GenuineIntel", processor.getVendor());
    EXPECT_EQ("Old CPU", processor.getBrand());
    EXPECT_EQ(6, processor.getFamily());
    EXPECT_EQ(0x8C, processor.getModel());
    EXPECT_EQ(1, processor.getStepping());
    EXPECT_EQ(4, processor.getCoreCount());
    EXPECT_EQ(8, processor.getThreadCount());
    EXPECT_TRUE(processor.has(OsProcessor::MMX) && processor.has(OsProcessor::AVX512VL));
    ASSERT_EQ(4U, processor.getCaches().size());
    EXPECT_EQ(49152, processor.findCache(1)->size);
    EXPECT_EQ(12, processor.findCache(1)->ways);
    EXPECT_EQ(64, processor.findCache(1)->lineSize);
    EXPECT_EQ(OsProcessor::Instructions, processor.getCaches()[1].kind);
    EXPECT_EQ(1310720, processor.findCache(2)->size);
    EXPECT_EQ(2, processor.findCache(2)->sharingThreads);
    EXPECT_EQ(12582912, processor.findCache(3)->size);
    EXPECT_EQ(16, processor.findCache(3)->sharingThreads);
    EXPECT_EQ(nullptr, processor.findCache(4));
    EXPECT_EQ((Kr::Vector<std::int64_t>{4096, 2 << 20, 1 << 30}), processor.getPageSizes());

    // A system that saves less lets programs use less.
    const OsProcessor narrow = readProcessor(answers, 0x7);
    EXPECT_TRUE(narrow.has(OsProcessor::AVX2) && !narrow.has(OsProcessor::AVX512F));
    const OsProcessor narrowest = readProcessor(answers, 0);
    EXPECT_TRUE(narrowest.has(OsProcessor::SSE4_2) && !narrowest.has(OsProcessor::AVX));
}

TEST(Processor, IsEmptyWhereNothingIsTold)
{
    const Kr::OsProcessor silent = readProcessor({}, 0);
    EXPECT_TRUE(silent.getVendor().empty() && silent.getBrand().empty());
    EXPECT_TRUE(silent.getCaches().empty() && silent.getPageSizes().empty());
    EXPECT_EQ(0, silent.getThreadCount() + silent.getFamily());
    // One of 1997: no leaf of today, and rubbish where the extended ones would be.
    const Kr::OsProcessor old = readProcessor({{0, 0, {2, 0, 0, 0}},
                                               {1, 0, {0x0634, 0, 0, 0x0080FBFF}},
                                               {0x80000000, 0, {0x03020101, 0, 0, 0x0C040843}}},
                                              0);
    EXPECT_EQ(1, old.getCoreCount());
    EXPECT_EQ((Kr::Vector<std::int64_t>{4096, 4 << 20}), old.getPageSizes());
    EXPECT_TRUE(old.getCaches().empty() && old.getBrand().empty());
    const Kr::OsProcessor& machine = Kr::OsProcessor::getInstance();
    EXPECT_EQ(&machine, &Kr::OsProcessor::getInstance());
    EXPECT_TRUE(machine.has(Kr::OsProcessor::SSE2));
}

// Byte order

template <class T>
void expectReversedBytes(T value)
{
    unsigned char bytes[sizeof(T)];
    unsigned char inverted[sizeof(T)];
    std::memcpy(bytes, &value, sizeof value);
    const T result = Kr::OsEndian::invert(value);
    std::memcpy(inverted, &result, sizeof result);
    for (std::size_t i = 0; i < sizeof(T); ++i)
        EXPECT_EQ(bytes[i], inverted[sizeof(T) - 1 - i]);
    const T back = Kr::OsEndian::invertIf(true, result);
    EXPECT_EQ(0, std::memcmp(&value, &back, sizeof value));
}

template <class T, class Bits>
T fromBits(Bits bits)
{
    T value;
    static_assert(sizeof value == sizeof bits);
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

TEST(Endian, Invert)
{
    using Kr::OsEndian;
    EXPECT_EQ(0x8877665544332211U, OsEndian::invert(std::uint64_t{0x1122334455667788}));
    EXPECT_EQ(std::int8_t{-3}, OsEndian::invert(std::int8_t{-3}));
    EXPECT_EQ(0x1234, OsEndian::invertIf(false, std::int16_t{0x1234}));
    EXPECT_FALSE(OsEndian::isBigEndian());
    expectReversedBytes(std::numeric_limits<std::int16_t>::min());
    expectReversedBytes(std::int32_t{-2});
    expectReversedBytes(std::int64_t{-0x123456789});
    // Patterns that are signalling NaNs before or after the reversal keep every bit.
    expectReversedBytes(fromBits<float>(std::uint32_t{0x0100A07F}));
    expectReversedBytes(fromBits<float>(std::uint32_t{0x7FA00001}));
    expectReversedBytes(fromBits<double>(std::uint64_t{0x010000000000F47F}));
    expectReversedBytes(fromBits<double>(std::uint64_t{0x7FF4000000000001}));
}

// The counter

TEST(Counter, RateFitsIn31Bits)
{
    struct Case
    {
        unsigned long long frequency;
        int rate;
        int shift;
    };
    const Case cases[] = {
        {3579545, 3579545, 0},       {10000000, 10000000, 0},
        {2147483647, 2147483647, 0}, {2147483648, 1073741824, 1},
        {3000000000, 1500000000, 1}, {4294967295, 2147483647, 1},
        {4294967296, 1073741824, 2}, {0xFFFFFFFFFFFFFFFF, 2147483647, 33},
    };
    OsCpuInfo::initialize();
    EXPECT_THROW(Kr::HwCounterEng::create(0), Kr::ExInternalError);
    for (const Case& entry : cases)
    {
        Kr::ObjPtr<Kr::HwCounterEng> engine(Kr::HwCounterEng::create(entry.frequency));
        EXPECT_EQ(entry.rate, engine->getRateNumerator()) << entry.frequency;
        EXPECT_EQ(1, engine->getRateDenominator());
        EXPECT_EQ(1. / entry.rate, engine->resolution());
        const unsigned long long before = OsCpuInfo::getHwCounterValue() >> entry.shift;
        const unsigned long long stamp = engine->timeStamp();
        const unsigned long long after = OsCpuInfo::getHwCounterValue() >> entry.shift;
        EXPECT_TRUE(before <= stamp && stamp <= after) << entry.frequency;
    }
}

TEST(Counter, EngineInTextAndSeconds)
{
    const Kr::HwCounterIA32 engine(1500000000, 1, 1);
    std::ostringstream text;
    engine.dump(text);
    EXPECT_EQ("HwCounterIA32:\n"
              "Rate         = 1500000000/1\n"
              "Cycle        = 6.66667e-10 seconds\n",
              text.str());
    EXPECT_DOUBLE_EQ(2., engine.seconds(7, 3000000007));
    EXPECT_DOUBLE_EQ(-2., engine.seconds(3000000007, 7));
    EXPECT_DOUBLE_EQ(2., engine.seconds(-1500000000ULL, 1500000000)); // across the wrap-around
}

TEST(Counter, FacadeReadsBetweenItsStamps)
{
    const unsigned long long first = HwCounter::timeStamp();
    const double now = HwCounter::seconds();
    const unsigned long long last = HwCounter::timeStamp();
    EXPECT_LE(HwCounter::seconds(0, first), now);
    EXPECT_GE(HwCounter::seconds(0, last), now);
    EXPECT_EQ(1, HwCounter::getRateDenominator());
    EXPECT_EQ(1. / HwCounter::getRateNumerator(), HwCounter::resolution());
    std::ostringstream text;
    HwCounter::dump(text);
    EXPECT_EQ(0U, text.str().find("HwCounterIA32:\n"));
}

/// The standard clock and the stamps around one reading of it.
struct Moment
{
    unsigned long long before = HwCounter::timeStamp();
    std::chrono::steady_clock::time_point steady = std::chrono::steady_clock::now();
    unsigned long long after = HwCounter::timeStamp();
};

TEST(Counter, SecondsAreThoseOfTheStandardClock)
{
    HwCounter::resolution();
    const Moment first;
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const Moment last;
    const double elapsed = std::chrono::duration<double>(last.steady - first.steady).count();
    // The system may correct its clock by up to 500 parts per million; the rest is the calibration.
    const double tolerance = 600e-6;
    EXPECT_GE(elapsed, HwCounter::seconds(first.after, last.before) * (1. - tolerance));
    EXPECT_LE(elapsed, HwCounter::seconds(first.before, last.after) * (1. + tolerance));
}

/// Also where every other stamp is taken by another thread, which hands it over, on whatever core
/// the system puts it.
TEST(Counter, NeverRunsBackwards)
{
    unsigned long long previous = HwCounter::timeStamp();
    const unsigned long long first = previous;
    int backwards = 0;
    const auto take = [&]
    {
        const unsigned long long stamp = HwCounter::timeStamp();
        backwards += stamp < previous ? 1 : 0;
        previous = stamp;
    };
    for (int i = 0; i < 2000000; ++i)
        take();
    for (int round = 0; round < 200; ++round)
    {
        std::thread(take).join();
        take();
    }
    EXPECT_EQ(0, backwards);
    EXPECT_GT(previous, first);
}

// Interval timers

TEST(IntervalTimer, NamesArePointers)
{
    const char name[] = "render";
    Kr::HwIntervalTimer timer;
    EXPECT_STREQ("anonymous", timer.getName());
    EXPECT_STREQ("anonymous", timer.setName(name));
    const Kr::HwIntervalTimer copy(timer);
    EXPECT_EQ(static_cast<const char*>(name), copy.getName());
    EXPECT_STREQ("anonymous", Kr::TodIntervalTimer().getName());
}

TEST(IntervalTimer, HardwareTimerMeasuresBetweenItsStamps)
{
    Kr::HwIntervalTimer timer("test");
    EXPECT_EQ(0., timer.timeInterval());
    const int allocations = getAllocationCount();
    const unsigned long long first = HwCounter::timeStamp();
    timer.start();
    const unsigned long long second = HwCounter::timeStamp();
    const double running = timer.sinceStart();
    const unsigned long long third = HwCounter::timeStamp();
    timer.stop();
    const unsigned long long fourth = HwCounter::timeStamp();
    EXPECT_EQ(allocations, getAllocationCount());
    EXPECT_GE(running, 0.);
    EXPECT_LE(running, HwCounter::seconds(first, third));
    EXPECT_GE(timer.timeInterval(), HwCounter::seconds(second, third));
    EXPECT_LE(timer.timeInterval(), HwCounter::seconds(first, fourth));

    Kr::HwIntervalTimer neverStarted;
    const double before = HwCounter::seconds();
    neverStarted.stop();
    EXPECT_GE(neverStarted.timeInterval(), before);
    EXPECT_LE(neverStarted.timeInterval(), HwCounter::seconds());
}

TEST(IntervalTimer, TimeOfDayDifferences)
{
    struct Case
    {
        Kr::TodIntervalTimer::NativeTimer later;
        Kr::TodIntervalTimer::NativeTimer earlier;
        double seconds;
    };
    const Case cases[] = {
        {{10., 900.}, {9., 950.}, .95}, {{10., 100.}, {9., 50.}, 1.05},
        {{7., 3.}, {7., 3.}, 0.},       {{9., 950.}, {10., 900.}, -.95},
        {{3., 0.}, {1., 999.}, 1.001},  {{3., 999.}, {3., 0.}, .999},
    };
    for (const Case& entry : cases)
        EXPECT_DOUBLE_EQ(entry.seconds,
                         Kr::TodIntervalTimer::getDifference(entry.later, entry.earlier));
}

TEST(IntervalTimer, TimeOfDayTimerReadsTheWallClock)
{
    using std::chrono::system_clock;
    const auto milliseconds = [](system_clock::time_point time)
    {
        return static_cast<double>(
            std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count());
    };
    const double before = milliseconds(system_clock::now());
    Kr::TodIntervalTimer::NativeTimer reading;
    reading.refresh();
    const double after = milliseconds(system_clock::now());
    const double read = reading._seconds * 1000. + reading._milliseconds;
    // The two may be read from clocks that the system advances a tick apart.
    EXPECT_GE(read, before - 20.);
    EXPECT_LE(read, after + 20.);
    EXPECT_TRUE(reading._milliseconds >= 0. && reading._milliseconds < 1000.);

    Kr::TodIntervalTimer timer("test");
    EXPECT_EQ(0., timer.timeInterval());
    timer.start();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    timer.stop();
    EXPECT_GE(timer.timeInterval(), .03);
    EXPECT_GE(timer.sinceStart(), timer.timeInterval());
}

} // namespace
