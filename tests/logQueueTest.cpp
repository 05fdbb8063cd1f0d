#include "assertionCheck.h"

#include <base/lgQueue.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Kr::LgQueue;
using Kr::LgStream;
using Kr::LgTypes;

constexpr const char* file = "src/base/lgQueue";

std::string take(LgStream& stream)
{
    const unsigned int size = stream.getNextSize();
    std::string text(size + 1, 'x');
    stream >> text.data();
    EXPECT_EQ('\0', text[size]);
    text.pop_back();
    return text;
}

template <class Value>
std::string textOf(const Value& value)
{
    static LgStream stream;
    stream << value << Kr::ends;
    return take(stream);
}

template <class Value>
std::string printed(const char* format, Value value)
{
    char text[LDBL_MAX_10_EXP + 10];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

bool log(LgQueue& queue, const std::string& text, LgTypes::Level level = LgTypes::Warning)
{
    if (!queue.reserveEntry(level))
        return false;
    queue.getStream() << text.c_str();
    queue.addEntry();
    return true;
}

/// The next entry: a message's text, or the number of lost messages.
std::string next(LgQueue& queue)
{
    const LgQueue::Entry& entry = queue.readEntry();
    const std::string text = entry.isOverflowEntry() ? std::to_string(entry.getOverflowCount())
                                                     : take(queue.getStream());
    queue.removeEntry();
    return text;
}

// Values

TEST(LogStream, ValuesReadAsPrinted)
{
    EXPECT_EQ("true", textOf(true));
    EXPECT_EQ("false", textOf(false));
    EXPECT_EQ("-3", textOf(short{-3}));
    EXPECT_EQ("65535", textOf(static_cast<unsigned short>(65535)));
    EXPECT_EQ("-2147483648", textOf(std::numeric_limits<int>::min()));
    EXPECT_EQ("4294967295", textOf(std::numeric_limits<unsigned int>::max()));
    EXPECT_EQ(printed("%ld", std::numeric_limits<long>::min()),
              textOf(std::numeric_limits<long>::min()));
    EXPECT_EQ(printed("%lu", std::numeric_limits<unsigned long>::max()),
              textOf(std::numeric_limits<unsigned long>::max()));
    EXPECT_EQ("-9223372036854775808", textOf(std::numeric_limits<long long>::min()));
    EXPECT_EQ("18446744073709551615", textOf(std::numeric_limits<unsigned long long>::max()));
    EXPECT_EQ("1.500000", textOf(1.5f));
    EXPECT_EQ("-0.333333", textOf(-1.L / 3));
    EXPECT_EQ("-0.000000", textOf(-5e-324));
    EXPECT_EQ("0.007812", textOf(0x1p-7));    // a tie, to even
    EXPECT_EQ("1.000000", textOf(0.9999995)); // just above a tie, and carries
    EXPECT_EQ("18446744073709549568.000000", textOf(18446744073709549568.)); // below 2^64
    EXPECT_EQ("18446744073709551616.000000", textOf(18446744073709551616.));
    EXPECT_EQ(317U, textOf(-DBL_MAX).size());
    EXPECT_EQ("-inf", textOf(-HUGE_VAL));
    EXPECT_EQ("nan", textOf(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ(printed("%Lf", -LDBL_MAX), textOf(-LDBL_MAX));
    EXPECT_EQ("a", textOf('a'));
    EXPECT_EQ("b", textOf(static_cast<signed char>('b')));
    EXPECT_EQ("c", textOf(static_cast<unsigned char>('c')));
    char text[] = "text";
    EXPECT_EQ("text", textOf(text));
    EXPECT_EQ("(null)", textOf(static_cast<const char*>(nullptr)));
    EXPECT_EQ("no ends inside", textOf(std::string_view("no\0 ends\0 inside\0", 17)));
    EXPECT_EQ("", textOf('\0'));
    EXPECT_EQ("", textOf(std::string_view()));
}

TEST(LogStream, DoublesReadAsPrintedWhateverTheirKind)
{
    std::mt19937_64 random(20261121);
    const auto fromBits = [](std::uint64_t bits)
    {
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    };
    // A 53-bit number whose lowest bit is that power of two.
    const auto withLowestBit = [&](int power)
    { return std::ldexp(static_cast<double>(random() >> 11), power); };
    const auto pick = [&](int count)
    { return static_cast<int>(random() % static_cast<unsigned int>(count)); };
    const auto make = [&](int kind) -> double
    {
        switch (kind)
        {
        case 0: // of any bits, the huge ones thinned out
            return fromBits(random() & ~(random() % 8 != 0 ? std::uint64_t{1} << 62 : 0));
        case 1: // of any everyday magnitude
            return withLowestBit(-pick(90));
        case 2: // a tie: an odd multiple of 2^-7
            return std::ldexp(static_cast<double>(2 * (random() >> pick(50) >> 12) + 1), -7);
        case 3: // beside the middle of two decimals
            return std::nextafter((pick(2000000000) + 0.5) / 1e6, pick(2) != 0 ? 1e9 : -1e9);
        case 4: // a decimal
            return pick(2000000000) / 1e6;
        default: // few bits, small
            return std::ldexp(static_cast<double>(pick(64)), -pick(40));
        }
    };
    LgStream stream;
    std::string text(400, '\0');
    char expected[400];
    for (int i = 0; i < 1200000; ++i)
    {
        const double value = make(i % 6);
        if (std::isnan(value))
            continue; // the sign of a NaN is the runtime's choice
        std::snprintf(expected, sizeof expected, "%f", value);
        stream << value << Kr::ends;
        stream >> text.data();
        ASSERT_STREQ(expected, text.c_str()) << printed("%a", value);
    }
}

// The ring of characters

TEST(LogStream, TextsComeOutInOrder)
{
    LgStream stream;
    EXPECT_EQ(32766U, LgStream::getMaxSize());
    EXPECT_EQ(32767U, stream.getNumCharacters());
    EXPECT_EQ(0U, stream.getNextSize());
    EXPECT_EQ("", take(stream));
    stream << "a" << Kr::ends << "" << Kr::ends << "b" << 'c';
    EXPECT_EQ(3U, stream.getOutputFlags());
    EXPECT_EQ("a", take(stream));
    EXPECT_EQ("", take(stream));
    EXPECT_EQ(0U, stream.getNextSize()); // not ended yet
    stream << Kr::ends;
    EXPECT_EQ(2U, stream.getNextSize());
    EXPECT_EQ("bc", take(stream));
    EXPECT_EQ("", take(stream));

    LgStream emptyFirst;
    emptyFirst << "" << Kr::ends << "second" << Kr::ends;
    EXPECT_EQ("", take(emptyFirst));
    EXPECT_EQ("second", take(emptyFirst));
}

TEST(LogStream, WhatDoesNotFitIsCut)
{
    LgStream stream(16);
    stream << "0123456789" << Kr::ends; // 4 places are left
    stream << "12345";                  // is too long, and "#" says so
    EXPECT_TRUE(stream.hasOverflowed());
    EXPECT_EQ(3U, stream.getNumCharacters());
    stream << "abc";
    EXPECT_TRUE(stream.isFull());
    stream.resetOutputFlags();
    stream << "lost" << 'x';
    EXPECT_EQ(LgStream::StringCompleted, stream.getOutputFlags());
    stream << Kr::ends; // the terminator takes the last place
    EXPECT_TRUE(stream.isFull());
    EXPECT_EQ(0U, stream.getNumCharacters());
    EXPECT_EQ("0123456789", take(stream));
    EXPECT_FALSE(stream.hasOverflowed());
    EXPECT_EQ(9U, stream.getNumCharacters()); // 10 less the one that the terminator waits for
    stream << "123456789" << Kr::ends;
    EXPECT_EQ("#abc", take(stream));
    EXPECT_EQ("123456789", take(stream));
    EXPECT_FALSE(stream.isFull());

    LgStream whole;
    whole << std::string(40000, 'x').c_str() << Kr::ends;
    EXPECT_TRUE(whole.hasOverflowed());
    EXPECT_EQ("#", take(whole));
    whole << std::string(LgStream::getMaxSize(), 'x').c_str() << Kr::ends;
    EXPECT_EQ(std::string(LgStream::getMaxSize(), 'x'), take(whole));
    EXPECT_THROW(LgStream odd(24), Kr::ExInternalError);
}

/// Appends pieces of every length while texts are taken, and says from the free room alone what
/// must become of each.
TEST(LogStream, EveryStateOfASmallRing)
{
    std::mt19937 random(7);
    for (const unsigned int size : {4U, 8U, 64U})
    {
        LgStream stream(size);
        std::vector<std::string> expected;
        std::string open;
        for (int i = 0; i < 200000; ++i)
        {
            const unsigned int what = random() % 8;
            const unsigned int room = stream.getNumCharacters();
            ASSERT_TRUE(!stream.isFull() || room == 0);
            if (what < 4)
            {
                const std::string piece(random() % (size / 2 + 2), static_cast<char>('a' + i % 26));
                if (what == 3)
                    stream << std::string_view(piece);
                else
                    stream << piece.c_str();
                if (room != 0)
                    open += piece.size() <= room ? piece : "#";
            }
            else if (what < 6)
            {
                if (room == 0 && open.empty())
                    continue; // there may be no place for a terminator
                stream << Kr::ends;
                expected.push_back(open);
                open.clear();
            }
            else if (!expected.empty())
            {
                ASSERT_EQ(expected.front(), take(stream)) << size << ' ' << i;
                expected.erase(expected.begin());
            }
        }
    }
}

// The queue

TEST(LogQueue, MessagesKeepTheirLevelTimeAndText)
{
    LgQueue queue(42);
    EXPECT_EQ(42UL, queue.getThreadId());
    EXPECT_EQ(1023U, LgQueue::getMaxSize());
    EXPECT_TRUE(queue.reserveEntry(LgTypes::Error));
    queue.addEntry(); // without text
    EXPECT_TRUE(queue.isEmpty());
    queue.addEntry(); // not reserved
    EXPECT_TRUE(queue.isEmpty());

    const std::uint64_t before = Kr::HwCounter::timeStamp();
    EXPECT_TRUE(log(queue, "abc", LgTypes::FatalError));
    EXPECT_TRUE(log(queue, "", LgTypes::Profiling));
    const std::uint64_t after = Kr::HwCounter::timeStamp();
    EXPECT_FALSE(queue.readEntry().isOverflowEntry());
    EXPECT_EQ(LgTypes::FatalError, queue.readEntry().getLevel());
    EXPECT_LE(before, queue.readEntry().getTimeStamp());
    EXPECT_EQ(3U, queue.getStream().getNextSize());
    EXPECT_EQ("abc", next(queue));
    EXPECT_EQ(LgTypes::Profiling, queue.readEntry().getLevel());
    EXPECT_GE(after, queue.readEntry().getTimeStamp());
    EXPECT_EQ("", next(queue));
    EXPECT_TRUE(queue.isEmpty());

    EXPECT_TRUE(queue.isCreatorAlive());
    queue.creatorExit();
    EXPECT_FALSE(queue.isCreatorAlive());
}

TEST(LogQueue, LossesAreCountedInOneEntry)
{
    LgQueue queue(0);
    for (int lap = 0; lap < 3; ++lap)
    {
        for (int i = 0; i < 1022; ++i)
        {
            EXPECT_FALSE(queue.isFull());
            EXPECT_TRUE(log(queue, std::to_string(i)));
        }
        EXPECT_TRUE(queue.isFull());
        for (int i = 0; i < 5; ++i)
            EXPECT_FALSE(log(queue, "lost"));
        for (int i = 0; i < 1022; ++i)
            EXPECT_EQ(std::to_string(i), next(queue));
        EXPECT_TRUE(log(queue, "afterwards"));
        EXPECT_TRUE(queue.readEntry().isOverflowEntry());
        EXPECT_EQ("5", next(queue));
        EXPECT_EQ("afterwards", next(queue));
    }
}

TEST(LogQueue, AFullRingOfCharactersIsAFullQueue)
{
    LgQueue queue(0, 16, 32);
    EXPECT_TRUE(log(queue, std::string(30, 'x')));
    EXPECT_FALSE(queue.isFull());
    EXPECT_FALSE(log(queue, "lost"));
    EXPECT_FALSE(log(queue, "lost"));
    EXPECT_EQ(std::string(30, 'x'), next(queue));
    // The consumer has the count in its hands: a loss now is another entry's.
    EXPECT_EQ(2, queue.readEntry().getOverflowCount());
    EXPECT_TRUE(queue.reserveEntry(LgTypes::Error));
    queue.getStream() << std::string(30, 'y').c_str(); // all there is
    queue.getStream() << "cut" << 'c';
    EXPECT_EQ(3U, queue.getStream().getOutputFlags());
    queue.addEntry();
    EXPECT_EQ("2", next(queue));
    EXPECT_EQ(std::string(30, 'y'), next(queue));
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_TRUE(log(queue, "as before"));
    EXPECT_EQ("as before", next(queue));
}

TEST(LogQueue, ALossAfterTheCountWasReadOpensAnotherEntry)
{
    LgQueue queue(0, 16, 32);
    EXPECT_TRUE(log(queue, std::string(31, 'x')));
    EXPECT_FALSE(log(queue, "lost"));
    queue.removeEntry(); // but the text stays, so the ring of characters is full
    EXPECT_EQ(1, queue.readEntry().getOverflowCount());
    EXPECT_FALSE(log(queue, "lost"));
    EXPECT_FALSE(log(queue, "lost"));
    EXPECT_EQ("1", next(queue));
    EXPECT_EQ("2", next(queue));
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_FALSE(log(queue, "lost"));
    EXPECT_EQ("1", next(queue));
}

TEST(LogQueue, EachMessageIsOneText)
{
    LgQueue queue(0);
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Error));
    queue.getStream() << Kr::ends; // no text, no entry
    queue.addEntry();
    EXPECT_TRUE(queue.isEmpty());
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Error));
    queue.getStream() << "one" << Kr::ends << "two" << 3 << Kr::ends;
    queue.addEntry();
    EXPECT_TRUE(log(queue, "four"));
    EXPECT_EQ("one", next(queue));
    EXPECT_EQ("four", next(queue));
    EXPECT_TRUE(queue.isEmpty());
}

TEST(LogQueue, SuppressionDropsWithoutTrace)
{
    LgQueue queue(0);
    {
        const LgQueue::SuppressGuard guard(queue);
        {
            const LgQueue::SuppressGuard inner(queue);
        }
        EXPECT_FALSE(log(queue, "dropped"));
    }
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_TRUE(log(queue, "kept"));
    EXPECT_EQ("kept", next(queue));
}

TEST(LogQueue, ObserverIsToldOnce)
{
    struct Observer : LgQueue::Observer
    {
        explicit Observer(std::string& log)
            : calls(log)
        {
        }
        ~Observer() override { calls += 'd'; }
        void entryAdded(LgQueue* queue) override { calls += queue->isEmpty() ? '?' : 'a'; }
        void entryRemoved(LgQueue* queue) override { calls += queue->isEmpty() ? 'r' : '?'; }
        void waitForSpace(LgQueue*, int amount) override { calls += std::to_string(amount); }
        std::string& calls;
    };
    std::string calls;
    {
        LgQueue queue(0);
        queue.waitForSpace(7);
        Kr::ObjPtr<LgQueue::Observer> first(new Observer(calls));
        EXPECT_TRUE(queue.changeObserver(first).isNull());
        EXPECT_TRUE(first.isNull());
        expectAssertion("_observer.isNull()", file, 312,
                        [&] { queue.changeObserver(Kr::ObjPtr<LgQueue::Observer>()); });
        EXPECT_TRUE(queue.reserveEntry(LgTypes::Error));
        queue.addEntry();
        EXPECT_TRUE(log(queue, "text"));
        next(queue);
        queue.waitForSpace(3);
    }
    EXPECT_EQ("ar3d", calls);
}

TEST(LogQueue, MisuseFailsItsCheck)
{
    LgQueue queue(0);
    expectAssertion("_beg != _end", file, 254, [&] { queue.readEntry(); });
    expectAssertion("_beg != _end", file, 262, [&] { queue.removeEntry(); });

    LgQueue::Entry entry;
    EXPECT_EQ(LgTypes::InternalError, entry.getLevel());
    expectAssertion("_oflow", file, 49, [&] { entry.getOverflowCount(); });
    expectAssertion("_oflow", file, 87, [&] { entry.incOverflowCount(); });
    entry.setOverflowEntry(true);
    entry.incOverflowCount();
    entry.setOverflowEntry(true);
    EXPECT_EQ(2, entry.getOverflowCount());
    const LgQueue::Entry copy = entry;
    EXPECT_EQ(2, copy.getOverflowCount());
    expectAssertion("!_oflow", file, 57, [&] { entry.getLevel(); });
    expectAssertion("!_oflow", file, 95, [&] { entry.setLevel(LgTypes::Error); });
    entry.setOverflowEntry(false);
    EXPECT_EQ(LgTypes::Tracing, entry.getLevel());

    EXPECT_THROW(LgQueue(0, 24, 64), Kr::ExInternalError);
}

TEST(LogQueue, DestructionOfAQueueInUseRaisesAndFreesIt)
{
    expectAssertion("_beg == _end", file, 155,
                    []
                    {
                        auto* const queue = new LgQueue(0);
                        log(*queue, "left");
                        delete queue;
                    });
    EXPECT_THROW(
        {
            LgQueue queue(0);
            log(queue, "left");
            throw std::runtime_error("on its way"); // and not overtaken
        },
        std::runtime_error);
}

/// A message is refused while another is being written: what was reserved moves on.
TEST(LogQueue, ALossWithinAMessage)
{
    LgQueue queue(0, 8, 32);
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Error));
    queue.getStream() << std::string(31, 'x').c_str();
    EXPECT_FALSE(queue.reserveEntry(LgTypes::Warning));
    queue.addEntry();
    EXPECT_EQ("1", next(queue));
    EXPECT_EQ(LgTypes::Error, queue.readEntry().getLevel());
    EXPECT_EQ(std::string(31, 'x'), next(queue));

    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(log(queue, "m"));
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Error));
    queue.getStream() << std::string(queue.getStream().getNumCharacters(), 'x').c_str();
    EXPECT_FALSE(queue.reserveEntry(LgTypes::Warning));
    expectAssertion("_end+2U != _beg", file, 235, [&] { queue.addEntry(); });
    while (!queue.isEmpty())
        next(queue);
}

TEST(LogQueue, TellsOfWhichLevelsTheLostMessagesWere)
{
    LgQueue queue(0, 8, 64);
    while (log(queue, "m", LgTypes::Tracing))
        continue; // the last one is lost
    EXPECT_FALSE(log(queue, "lost", LgTypes::Error));
    EXPECT_FALSE(log(queue, "lost", LgTypes::Tracing));
    while (!queue.readEntry().isOverflowEntry())
        next(queue);
    const int count = queue.readEntry().getOverflowCount();
    EXPECT_EQ(3, count);
    EXPECT_EQ((LgQueue::Counts{0, 0, 1, 0, 0, 2, 0}), queue.takeLosses(count));
    EXPECT_EQ(LgQueue::Counts(), queue.takeLosses(count));
    queue.removeEntry();
}

/// How often the producer was told to wake the consumer.
int wakeUps = 0;

TEST(LogQueue, TellsWhenHalfOfARingIsFilled)
{
    const struct
    {
        std::size_t length; ///< of each text
        int toldAt;         ///< the message that is told of
    } cases[] = {{10, 513}, {999, 17}, {20000, 1}};
    for (const auto& c : cases)
    {
        LgQueue queue(0);
        queue.setHalfFullHandler([]() noexcept { ++wakeUps; });
        for (int lap = 0; lap < 3; ++lap)
        {
            wakeUps = 0;
            int toldAt = 0;
            for (int i = 1; wakeUps == 0 && i < 1000; toldAt = i++)
                EXPECT_TRUE(log(queue, std::string(c.length, 'x')));
            EXPECT_NEAR(c.toldAt, toldAt, lap == 0 ? 0 : 1) << c.length;
            EXPECT_EQ(1, wakeUps);
            while (!queue.isEmpty())
                next(queue);
        }
    }
}

// Two threads

struct Traffic
{
    const char* name;
    unsigned int numEntries, numCharacters;
    bool patient; ///< the producer waits for room
    int numMessages;
};

class LogQueueThreads : public testing::TestWithParam<Traffic>
{
protected:
    /// Numbered texts, of all lengths that a small ring takes.
    static std::string makeText(int number, unsigned int longest)
    {
        std::string text = std::to_string(number);
        text.append(static_cast<unsigned int>(number) % 37 % (longest - text.size() + 1),
                    static_cast<char>('a' + number % 26));
        return text;
    }

    void produce(LgQueue& queue)
    {
        const unsigned int longest = GetParam().numCharacters - 2;
        for (int i = 0; i < GetParam().numMessages; ++i)
        {
            const std::string text = makeText(i, longest);
            while (GetParam().patient &&
                   (queue.isFull() || queue.getStream().getNumCharacters() < text.size()))
                std::this_thread::yield();
            if (!log(queue, text))
                std::this_thread::yield();
        }
        queue.creatorExit();
    }

    /// Every number must turn up: as its text, as "#" in its place, or in the count between.
    void consume(LgQueue& queue)
    {
        const unsigned int longest = GetParam().numCharacters - 2;
        int number = 0;
        for (bool last = false; !last;)
        {
            last = !queue.isCreatorAlive();
            if (queue.isEmpty())
                std::this_thread::yield();
            for (; !queue.isEmpty(); queue.removeEntry())
            {
                const LgQueue::Entry& entry = queue.readEntry();
                ASSERT_LE(lastTime, entry.getTimeStamp());
                lastTime = entry.getTimeStamp();
                if (entry.isOverflowEntry())
                {
                    lost += entry.getOverflowCount();
                    number += entry.getOverflowCount();
                    continue;
                }
                const std::string text = take(queue.getStream());
                if (text == "#")
                    ++cut;
                else
                    ASSERT_EQ(makeText(number, longest), text);
                ++number;
            }
        }
        EXPECT_EQ(GetParam().numMessages, number);
    }

    std::uint64_t lastTime = 0;
    int lost = 0, cut = 0;
};

TEST_P(LogQueueThreads, EveryMessageIsAccountedFor)
{
    LgQueue queue(1, GetParam().numEntries, GetParam().numCharacters);
    std::thread producer([&] { produce(queue); });
    consume(queue);
    producer.join();
    EXPECT_TRUE(queue.isEmpty());
    if (GetParam().patient)
        EXPECT_EQ(0, lost + cut);
    else
        EXPECT_GT(lost + cut, 0);
}

INSTANTIATE_TEST_SUITE_P(Traffic, LogQueueThreads,
                         testing::Values(Traffic{"patient", 1024, 32768, true, 2000000},
                                         Traffic{"flood", 1024, 32768, false, 2000000},
                                         Traffic{"smallPatient", 8, 64, true, 200000},
                                         Traffic{"smallEntries", 4, 4096, false, 400000},
                                         Traffic{"smallCharacters", 64, 16, false, 400000}),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
