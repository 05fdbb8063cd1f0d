#include <base/hwCounter.h>
#include <base/internal/errors/processIdentity.h>
#include <base/internal/log/lgColumnFormat.h>
#include <base/internal/log/lgFile.h>
#include <base/internal/log/lgInterProcessLock.h>
#include <base/internal/log/lgJsonFormat.h>
#include <base/internal/log/lgOutputs.h>
#include <base/internal/log/lgReader.h>
#include <base/internal/log/lgReaderThread.h>
#include <base/internal/log/lgRegistry.h>
#include <base/internal/log/lgSettings.h>
#include <base/internal/log/lgTimedFile.h>
#include <base/internal/log/lgTimelineFile.h>
#include <base/lgQueue.h>

#include <logTestFiles.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <sstream>
#include <thread>

namespace
{

using Kr::LgDestination;
using Kr::LgTypes;
using LogTest::Folder;
using LogTest::readFile;
using LogTest::readLines;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

/// Keeps what is written; fails while told to.
struct Memory
{
    std::string text;
    int appends = 0;
    bool fails = false;
    std::size_t mostTaken = 1 << 20;  ///< at a time
    std::size_t firstTaken = 1 << 20; ///< by the first call
    std::size_t room = 1 << 30;
    bool takesParts = false; ///< the one that finds room
};

class MemoryFile : public Kr::LgFile
{
public:
    explicit MemoryFile(Memory& memory)
        : _memory(memory)
    {
    }

    std::size_t append(const char* text, std::size_t size) noexcept override
    {
        ++_memory.appends;
        const std::size_t limit = _memory.appends == 1 ? _memory.firstTaken : _memory.mostTaken;
        const std::size_t rest = _memory.room - std::min(_memory.room, _memory.text.size());
        std::size_t taken = _memory.fails ? 0 : std::min(size, limit);
        if (taken > rest)
            taken = _memory.takesParts ? rest : 0;
        _memory.text.append(text, taken);
        return taken;
    }

    bool isFar() const noexcept override { return false; }
    bool sync() noexcept override { return true; }
    std::string getProblem() const override { return "No room."; }

private:
    Memory& _memory;
};

std::size_t countLines(const std::string& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

/// A reader of some queues whose every level goes to one output in memory.
class LogReader : public testing::Test
{
protected:
    LogReader()
    {
        auto output =
            std::make_shared<Kr::LgOutput>(std::make_unique<MemoryFile>(memory), "memory", format);
        for (unsigned int level = 0; level < LgTypes::NUM_LEVELS; ++level)
            outputs.setOutput(static_cast<LgTypes::Level>(level), output);
    }

    std::shared_ptr<Kr::LgQueue> addQueue(unsigned long thread)
    {
        auto queue = std::make_shared<Kr::LgQueue>(thread);
        queues.addQueue(queue);
        return queue;
    }

    static bool log(Kr::LgQueue& queue, const std::string& text,
                    LgTypes::Level level = LgTypes::Warning)
    {
        if (!queue.reserveEntry(level))
            return false;
        queue.getStream() << text.c_str();
        queue.addEntry();
        return true;
    }

    /// The texts of all lines written so far.
    std::vector<std::string> texts()
    {
        outputs.flush(true);
        std::vector<std::string> all;
        std::istringstream stream(memory.text);
        for (std::string line; std::getline(stream, line);)
            all.push_back(line.substr(46));
        return all;
    }

    const Kr::LgClock clock;
    Memory memory;
    Kr::LgColumnFormat format{clock, false};
    Kr::LgRegistry queues;
    Kr::LgOutputs outputs;
    Kr::LgReader reader{queues, outputs};
};

TEST_F(LogReader, WritesTheQueuesInTheOrderOfTheStamps)
{
    const auto first = addQueue(1);
    const auto second = addQueue(2);
    EXPECT_FALSE(reader.eventsPending());
    EXPECT_FALSE(reader.flushEarliest());
    log(*second, "a");
    log(*first, "b");
    log(*first, "c");
    log(*second, "d");
    EXPECT_TRUE(reader.eventsPending());
    EXPECT_TRUE(reader.flushEarliest());
    EXPECT_THAT(texts(), ElementsAre("a"));
    EXPECT_EQ(reader.flushAll(), 3U);
    EXPECT_FALSE(reader.eventsPending());
    EXPECT_THAT(texts(), ElementsAre("a", "b", "c", "d"));
}

TEST_F(LogReader, DropsAQueueOnlyWhenItIsDrainedAndItsThreadHasEnded)
{
    std::weak_ptr<Kr::LgQueue> seen;
    {
        const auto queue = addQueue(1);
        seen = queue;
        log(*queue, "last words");
        reader.flushAll();
        log(*queue, "and more");
        queue->creatorExit();
    }
    EXPECT_FALSE(seen.expired());
    reader.flushAll();
    EXPECT_TRUE(seen.expired());
    EXPECT_EQ(texts().size(), 2U);
}

TEST_F(LogReader, ReportsWhatAFullQueueLost)
{
    const auto queue = addQueue(7);
    int written = 0;
    for (int i = 0; i < 1100; ++i)
        written += log(*queue, "x") ? 1 : 0;
    EXPECT_EQ(written, 1022);
    EXPECT_EQ(reader.flushAll(), 1023U);
    EXPECT_EQ(texts().back(), "Event overflow [78]: 78 Warning");
    EXPECT_THAT(memory.text, HasSubstr("Informational"));
    EXPECT_EQ(reader.getOverflowCount(), 78U);
}

TEST_F(LogReader, TakesTextsOfEverySizeAroundTheRingsLimit)
{
    const auto queue = addQueue(1);
    for (const std::size_t size : {1U, 32764U, 32765U, 32766U, 32767U, 40000U, 3U, 32766U})
    {
        memory.text.clear();
        const std::string text(size, 'y');
        ASSERT_TRUE(log(*queue, text));
        reader.flushAll();
        const bool fits = size < 32767;
        EXPECT_EQ(texts(), std::vector<std::string>{fits ? text : "#"}) << size;
    }
    EXPECT_EQ(reader.getCutCount(), 2U);
}

std::atomic<int> drains{0};

/// Left to its timer, the thread would take all of 16 ms for each round.
TEST(LogReaderThread, AnswersWhenItIsWoken)
{
    constexpr int rounds = 100;
    Kr::LgReaderThread reader(
        []() noexcept -> std::size_t
        {
            ++drains;
            return 0;
        });
    reader.start();
    while (drains < 24) // until it looks seldom
        std::this_thread::yield();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < rounds; ++i)
    {
        const int before = drains;
        reader.wake();
        while (drains == before)
            std::this_thread::yield();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, rounds * std::chrono::milliseconds(8));
    reader.stop();
}

TEST_F(LogReader, LevelsWithoutAnOutputAreDiscarded)
{
    const auto queue = addQueue(1);
    outputs.setOutput(LgTypes::Warning, nullptr);
    log(*queue, "unseen");
    log(*queue, "seen", LgTypes::Error);
    EXPECT_EQ(reader.flushAll(), 2U);
    EXPECT_THAT(texts(), ElementsAre("seen"));
}

/// The youngest messages survive, behind a record that tells of the others.
TEST_F(LogReader, AnOutageLosesOnlyWhatFindsNoRoomAndTellsSo)
{
    const auto queue = addQueue(1);
    memory.fails = true;
    log(*queue, "oldest");
    reader.flushAll();
    testing::internal::CaptureStderr();
    for (int round = 0; round < 20; ++round)
    {
        for (int i = 0; i < 20; ++i)
            log(*queue, std::string(1000, 'z') + std::to_string(20 * round + i));
        reader.flushAll();
        outputs.flush(true);
    }
    const std::string complaint = testing::internal::GetCapturedStderr();
    EXPECT_EQ(countLines(complaint), 1U) << complaint;
    EXPECT_THAT(complaint, HasSubstr("memory: No room."));
    memory.fails = false;
    const std::uint64_t lost = outputs.getLostCount();
    const std::vector<std::string> all = texts();
    EXPECT_EQ(all.size() + lost, 401U + 1U);
    EXPECT_THAT(lost, testing::AllOf(testing::Gt(150U), testing::Lt(230U))); // 180 KB and more wait
    EXPECT_EQ(all.front(),
              std::to_string(lost) + " messages were lost: the log could not be written");
    for (std::size_t i = 1; i < all.size(); ++i)
        EXPECT_EQ(all[i].substr(1000), std::to_string(lost - 2 + i));
    EXPECT_EQ(outputs.getLostCount(), lost);
}

TEST_F(LogReader, AFailingFileIsNotTriedAtEveryTurn)
{
    const auto queue = addQueue(1);
    memory.fails = true;
    testing::internal::CaptureStderr();
    for (int i = 0; i < 100; ++i)
    {
        log(*queue, "w");
        reader.flushAll();
        outputs.flush(false);
    }
    testing::internal::GetCapturedStderr();
    EXPECT_LT(memory.appends, 50);
    outputs.close();
    EXPECT_EQ(outputs.getLostCount(), 100U);
}

/// The messages for which an overflow record stands are counted by the reader; when the record is
/// lost as well, the outage's record tells of them, and no message counts twice.
TEST_F(LogReader, AnOverflowRecordThatIsLostIsNoMessage)
{
    const auto queue = addQueue(1);
    memory.fails = true;
    testing::internal::CaptureStderr();
    constexpr int messages = 20000;
    for (int i = 0; i < messages; ++i)
    {
        log(*queue, std::string(200, 'o'));
        if (i % 2000 == 1999)
            reader.flushAll();
    }
    testing::internal::GetCapturedStderr();
    EXPECT_GT(reader.getOverflowCount(), 0U);
    memory.fails = false;
    std::uint64_t written = 0;
    std::uint64_t reported = 0;
    for (const std::string& text : texts())
    {
        unsigned long count = 0;
        if (std::sscanf(text.c_str(), "Event overflow [%lu]", &count) == 1 ||
            std::sscanf(text.c_str(), "%lu messages were lost", &count) == 1)
            reported += count;
        else
            ++written;
    }
    EXPECT_EQ(written + reported, messages);
    EXPECT_EQ(written + reader.getOverflowCount() + outputs.getLostCount(), messages);
}

/// What was not told by a record before the end is told on the standard error stream; where the
/// lines find no room, the record that counts them may.
TEST_F(LogReader, AnOutageThatLastsToTheEndTellsItsTotal)
{
    const auto queue = addQueue(1);
    for (const std::size_t room : {std::size_t{0}, std::size_t{200}})
    {
        memory = Memory();
        memory.fails = room == 0;
        memory.room = room;
        testing::internal::CaptureStderr();
        for (int i = 0; i < 3; ++i)
            log(*queue, std::string(500, 'q'));
        reader.flushAll();
        outputs.close();
        const std::string complaint = testing::internal::GetCapturedStderr();
        constexpr const char* total = "3 messages were lost: the log could not be written";
        EXPECT_THAT(room == 0 ? complaint : memory.text, HasSubstr(total));
        EXPECT_EQ(complaint.find("lost: ") != std::string::npos, room == 0);
    }
    EXPECT_EQ(outputs.getLostCount(), 6U);
}

/// A pipe takes what it has room for: the rest follows where it stopped, whatever is lost between.
TEST_F(LogReader, APartOfALineIsContinued)
{
    const auto queue = addQueue(1);
    memory.mostTaken = 700;
    memory.takesParts = true;
    testing::internal::CaptureStderr();
    for (int i = 0; i < 600; ++i)
    {
        if (i == 10)
            memory.room = memory.text.size() + 500; // in the middle of the line
        else if (i == 590)
            memory.room = 1 << 30;
        log(*queue, std::string(1000, 'p') + std::to_string(i));
        reader.flushAll();
        outputs.flush(true);
    }
    testing::internal::GetCapturedStderr();
    const std::vector<std::string> all = texts();
    EXPECT_EQ(all.size() - 1 + outputs.getLostCount(), 600U);
    EXPECT_GT(outputs.getLostCount(), 0U);
    for (const std::string& text : all)
        EXPECT_EQ(text.rfind('p'), text.find("were lost") != text.npos ? text.npos : 999) << text;
}

/// Keeps whoever comes while it is closed.
class Gate
{
public:
    void set(bool isOpen)
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isOpen = isOpen;
        _changed.notify_all();
    }

    void pass()
    {
        std::unique_lock<std::mutex> lock(_mutex);
        _changed.wait(lock, [this] { return _isOpen; });
    }

    /// For the file, when it goes; and whoever waits for that.
    void end()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _hasEnded = true;
    }

    bool hasEnded()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _hasEnded;
    }

private:
    std::mutex _mutex;
    std::condition_variable _changed;
    bool _isOpen = true;
    bool _hasEnded = false;
};

/// A file that is out of reach while its gate is closed.
class FarFile : public Kr::LgFile
{
public:
    FarFile(std::unique_ptr<Kr::LgFile> file, std::shared_ptr<Gate> gate)
        : _file(std::move(file))
        , _gate(std::move(gate))
    {
    }

    ~FarFile() override { _gate->end(); }

    std::size_t append(const char* text, std::size_t size) noexcept override
    {
        _gate->pass();
        return _file->append(text, size);
    }

    bool replaceEnd(std::size_t removed, const char* text, std::size_t size) noexcept override
    {
        _gate->pass();
        return _file->replaceEnd(removed, text, size);
    }

    bool isFar() const noexcept override { return true; }

    bool sync() noexcept override
    {
        _gate->pass();
        return _file->sync();
    }

    std::string getProblem() const override { return _file->getProblem(); }

private:
    const std::unique_ptr<Kr::LgFile> _file;
    const std::shared_ptr<Gate> _gate;
};

constexpr std::chrono::milliseconds shortPatience(20);
constexpr std::chrono::seconds noHang(10);

std::unique_ptr<Kr::LgFile> makeFar(std::unique_ptr<Kr::LgFile> file,
                                    const std::shared_ptr<Gate>& gate)
{
    return std::make_unique<Kr::LgTimedFile>(std::make_unique<FarFile>(std::move(file), gate),
                                             std::make_shared<Kr::LgHelper>(), shortPatience);
}

/// Nobody waits for it but once, other outputs go on, and what it took in the end, all of it or a
/// part, is not written again; what found no room meanwhile is told.
TEST_F(LogReader, AFileThatDoesNotAnswerStopsNobody)
{
    const auto queue = addQueue(1);
    for (const std::size_t taken : {std::size_t{1} << 20, std::size_t{1500}, std::size_t{0}})
    {
        const auto gate = std::make_shared<Gate>();
        Memory far;
        far.firstTaken = taken;
        memory.text.clear();
        auto file = makeFar(std::make_unique<MemoryFile>(far), gate);
        const Kr::LgFile& seen = *file;
        const auto output = std::make_shared<Kr::LgOutput>(std::move(file), "far", format);
        outputs.setOutput(LgTypes::Error, output);
        gate->set(false);
        testing::internal::CaptureStderr();
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < 600; ++i)
        {
            log(*queue, std::string(1000, 'f') + std::to_string(i), LgTypes::Error);
            log(*queue, "near");
            reader.flushAll();
            outputs.sync();
        }
        EXPECT_LT(std::chrono::steady_clock::now() - start, noHang);
        EXPECT_EQ(countLines(memory.text), 600U);
        const std::string complaint = testing::internal::GetCapturedStderr();
        EXPECT_EQ(countLines(complaint), 1U) << complaint;
        EXPECT_THAT(complaint, HasSubstr("far: It does not answer."));
        EXPECT_THAT(output->getLostCount(), testing::AllOf(testing::Gt(300U), testing::Lt(420U)));
        gate->set(true);
        while (seen.getPending() != 0)
            outputs.flush(true);
        outputs.close();
        EXPECT_EQ(countLines(far.text), 601 - output->getLostCount());
        EXPECT_THAT(far.text,
                    HasSubstr(std::to_string(output->getLostCount()) + " messages were lost"));
        for (const int i : {0, 1, 598, 599})
            EXPECT_EQ(far.text.find("ff" + std::to_string(i) + '\n'),
                      far.text.rfind("ff" + std::to_string(i) + '\n'));
    }
}

/// One that does not answer to the end costs the end one wait, and all of its messages are told.
TEST_F(LogReader, AFileThatNeverAnswersIsLeft)
{
    const auto queue = addQueue(1);
    const auto gate = std::make_shared<Gate>();
    auto output = std::make_shared<Kr::LgOutput>(
        makeFar(std::make_unique<MemoryFile>(memory), gate), "far", format);
    outputs.setOutput(LgTypes::Error, output);
    gate->set(false);
    testing::internal::CaptureStderr();
    for (int i = 0; i < 3; ++i)
        log(*queue, "far", LgTypes::Error);
    reader.flushAll();
    outputs.close();
    EXPECT_EQ(output->getLostCount(), 3U);
    outputs.setOutput(LgTypes::Error, nullptr);
    output.reset();
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("3 messages were lost"));
    EXPECT_FALSE(gate->hasEnded());
    gate->set(true);
    while (!gate->hasEnded())
        std::this_thread::yield();
}

/// So it is with the timeline, which is whole whenever it can be read.
TEST(LogTimelineFile, AFileThatDoesNotAnswerLosesNothingUntold)
{
    const Folder folder;
    const Kr::LgClock clock;
    Kr::LgFileSettings settings;
    settings.path = folder / "timeline.json";
    settings.isExclusive = true;
    const auto gate = std::make_shared<Gate>();
    testing::internal::CaptureStderr();
    {
        auto file = makeFar(Kr::LgFile::create(settings), gate);
        const Kr::LgFile& seen = *file;
        Kr::LgTimelineFile timeline(std::move(file), "far", clock);
        const auto add = [&](int number)
        {
            const std::string text = std::string(1000, 't') + std::to_string(number);
            timeline.addMessage({LgTypes::Warning, Kr::HwCounter::timeStamp(), 0, {}, text, 0});
            timeline.flush(true);
        };
        add(0);
        gate->set(false);
        for (int i = 1; i < 600; ++i)
            add(i);
        EXPECT_TRUE(LogTest::JsonCheck::isValue(readFile(settings.path)));
        gate->set(true);
        while (seen.getPending() != 0)
            timeline.flush(true);
    }
    EXPECT_EQ(countLines(testing::internal::GetCapturedStderr()), 1U);
    const std::string text = readFile(settings.path);
    EXPECT_TRUE(LogTest::JsonCheck::isValue(text));
    std::size_t found = 0;
    for (std::size_t at = text.find("ttt"); at != text.npos; at = text.find("ttt", at + 1000))
        ++found;
    const std::size_t told = text.find(" events were lost");
    ASSERT_NE(told, text.npos);
    EXPECT_EQ(found + std::stoul(text.substr(text.rfind('"', told) + 1)), 600U);
    EXPECT_NE(text.find("t599"), text.npos);
}

struct LineCase
{
    const char* group;
    const char* text;
    const char* line; ///< from the group's column on
    const char* json; ///< its end
};

constexpr LineCase lineCases[] = {
    {"Cache", "plain", "Cache         plain", "\"group\":\"Cache\",\"text\":\"plain\"}"},
    {"", "two\nlines\r\t\x1b[0m\x7f", "-             two\\nlines\\r\\t\\x1b[0m\\x7f",
     "\"text\":\"two\\nlines\\r\\t\\u001b[0m\\u007f\"}"},
    {"", "C:\\tmp \"q\"", "-             C:\\tmp \"q\"", "\"text\":\"C:\\\\tmp \\\"q\\\"\"}"},
    {"", "\xc3\xa9 \xe2\x82\xac \xf0\x9f\x8e\xa8",
     "-             \xc3\xa9 \xe2\x82\xac \xf0\x9f\x8e\xa8",
     "\"text\":\"\xc3\xa9 \xe2\x82\xac \xf0\x9f\x8e\xa8\"}"},
    {"\xc2\x90",
     "\xc2\x9b"
     "2J \xc2\xa0\xc2",
     "\\x90          \\x9b2J \xc2\xa0\xc2",
     "\"group\":\"\\u0090\",\"text\":\"\\u009b2J \xc2\xa0\\u00c2\"}"},
    {"", "\xe9 \xc0\xaf \xed\xa0\x80 \xe2\x82", "-             \xe9 \xc0\xaf \xed\xa0\x80 \xe2\x82",
     "\"text\":\"\\u00e9 \\u00c0\\u00af \\u00ed\\u00a0\\u0080 \\u00e2\\u0082\"}"},
};

TEST(LogLine, EveryRecordIsOneLineInBothForms)
{
    const Kr::LgClock clock;
    Kr::LgColumnFormat text(clock, false);
    Kr::LgJsonFormat json(clock, true);
    for (const LineCase& each : lineCases)
    {
        const Kr::LgRecord record = {
            LgTypes::Error, Kr::HwCounter::timeStamp(), 3, each.group, each.text, 0};
        std::string line;
        text.append(line, record);
        EXPECT_EQ(countLines(line), 1U);
        EXPECT_EQ(line.find("Error           "), 0U);
        EXPECT_EQ(line.substr(32), std::string(each.line) + "\n");
        line.clear();
        json.append(line, record);
        EXPECT_EQ(countLines(line), 1U);
        EXPECT_TRUE(LogTest::JsonCheck::isValue(line)) << line;
        EXPECT_THAT(line, EndsWith(std::string(each.json) + "\n"));
        EXPECT_THAT(line, HasSubstr("\"level\":\"Error\",\"process\":"));
    }
}

/// The stamp's time in the line against the system's clock, read before and after.
TEST(LogLine, ShowsTheTimeOfDayInUtc)
{
    const auto text = [](std::time_t time)
    {
        char buffer[32];
        std::strftime(buffer, sizeof buffer, "%Y-%m-%dT%H:%M:%S", std::gmtime(&time));
        return std::string(buffer);
    };
    const std::string before = text(std::time(nullptr));
    const Kr::LgClock clock;
    Kr::LgColumnFormat format(clock, true);
    std::string line;
    format.append(line, {LgTypes::Error, Kr::HwCounter::timeStamp(), 0, {}, "now", 0});
    const std::string after = text(std::time(nullptr) + 1);
    EXPECT_LE(before, line.substr(0, 19));
    EXPECT_GE(after, line.substr(0, 19));
    EXPECT_EQ(line[19], '.');
    EXPECT_EQ(line.substr(26, 3), "Z  ");
    EXPECT_EQ(LogTest::textOf(line), "now\n");
}

std::map<std::string, std::string> variables;

const char* lookUp(const char* name)
{
    const auto at = variables.find(name);
    return at != variables.end() ? at->second.c_str() : nullptr;
}

/// The path as the settings show it.
std::string shown(const std::string& path)
{
    return std::filesystem::absolute(path).make_preferred().string();
}

TEST(LogSettings, DefaultsAndEveryVariable)
{
    std::ostringstream report;
    variables = {{"USER", "anna"}};
    Kr::LgSettings settings = Kr::LgSettings::read(lookUp, report);
    EXPECT_THAT(settings.directory, EndsWith("KRbase-anna"));
    EXPECT_EQ(settings.destinations[LgTypes::Tracing].path,
              shown(settings.directory + "/events.log"));
    EXPECT_EQ(settings.destinations[LgTypes::Profiling].path,
              shown(settings.directory + "/prof.log"));
    EXPECT_TRUE(settings.hasTimeStamps && settings.isLockedBetweenProcesses);
    EXPECT_FALSE(settings.isJson || settings.isBlocking);
    EXPECT_EQ(settings.timelinePath + std::to_string(settings.maxFileSize), "0");

    variables = {{"R4P_TEST_DIR", "/elsewhere"},
                 {"KR_LOG_DIR", "/logs"},
                 {"KR_LOG_INTERNAL_ERROR", "stderr"},
                 {"KR_LOG_FATAL_ERROR", "stdout"},
                 {"KR_LOG_RECOVERABLE_ERROR", "none"},
                 {"KR_LOG_WARNING", "warnings.log"},
                 {"KR_LOG_INFORMATIONAL", "/var/info.log"},
                 {"KR_LOG_TRACING", "C:\\t.log"},
                 {"KR_LOG_PROFILING", "file"},
                 {"KR_LOG_DISABLE_TIMESTAMPS", "1"},
                 {"KR_BLOCKING_TRACE", "ON"},
                 {"KR_INTERNAL_INTERPROCESS_LOG_LOCK", "off"},
                 {"KR_LOG_FORMAT", "json"},
                 {"KR_LOG_MAX_SIZE", "3M"},
                 {"KR_LOG_MAX_FILES", "5"},
                 {"KR_LOG_TIMELINE", "t.json"}};
    settings = Kr::LgSettings::read(lookUp, report);
    const auto& destinations = settings.destinations;
    EXPECT_EQ(destinations[0].kind, LgDestination::standardError);
    EXPECT_EQ(destinations[1].kind, LgDestination::standardOutput);
    EXPECT_EQ(destinations[2].kind, LgDestination::none);
    EXPECT_EQ(destinations[3].path, shown("/logs/warnings.log"));
    EXPECT_EQ(destinations[4].path, shown("/var/info.log"));
    EXPECT_EQ(destinations[5].path, std::filesystem::path("C:/t.log").make_preferred().string());
    EXPECT_EQ(destinations[6].path, shown("/logs/prof.log"));
    EXPECT_FALSE(settings.hasTimeStamps || settings.isLockedBetweenProcesses);
    EXPECT_TRUE(settings.isJson && settings.isBlocking);
    EXPECT_EQ(settings.maxFileSize, 3U << 20);
    EXPECT_EQ(settings.keptFiles, 5);
    EXPECT_EQ(settings.timelinePath, shown("/logs/t.json"));
    EXPECT_EQ(report.str(), "");
}

/// A path stays where it is when the working directory changes, and has one spelling.
TEST(LogSettings, PathsAreAbsoluteInOneSpelling)
{
    std::ostringstream report;
    variables = {{"KR_LOG_DIR", "logs/"},
                 {"KR_LOG_WARNING", "both.log"},
                 {"KR_LOG_FATAL_ERROR", "./both.log"},
                 {"KR_LOG_TRACING", "sub\\..\\both.log"}};
    const Kr::LgSettings settings = Kr::LgSettings::read(lookUp, report);
    const std::string both = shown("logs/both.log");
    EXPECT_EQ(settings.destinations[LgTypes::Warning].path, both);
    EXPECT_EQ(settings.destinations[LgTypes::FatalError].path, both);
    EXPECT_EQ(settings.destinations[LgTypes::Tracing].path, both);
}

TEST(LogSettings, BadValuesAreReportedAndSkipped)
{
    for (const auto& [name, value] :
         std::map<std::string, std::string>{{"KR_LOG_WARNING", "stdotu"},
                                            {"KR_LOG_DISABLE_TIMESTAMPS", "maybe"},
                                            {"KR_LOG_FORMAT", "xml"},
                                            {"KR_LOG_MAX_SIZE", "12Q"},
                                            {"KR_LOG_MAX_FILES", "0"},
                                            {"KR_BLOCKING_TRACE", "ON "}})
    {
        std::ostringstream report;
        variables = {{name, value}, {"KR_LOG_DIR", "d"}};
        const Kr::LgSettings settings = Kr::LgSettings::read(lookUp, report);
        EXPECT_EQ(report.str(), "Invalid value for " + name + ": " + value + "\n");
        EXPECT_EQ(settings.destinations[LgTypes::Warning].path, shown("d/events.log"));
        EXPECT_TRUE(settings.hasTimeStamps && !settings.isJson && !settings.isBlocking);
    }
    for (const char* size : {"-1", "K", "1KK", "18446744073709551616", "17179869184G"})
    {
        std::ostringstream report;
        variables = {{"KR_LOG_MAX_SIZE", size}};
        EXPECT_EQ(Kr::LgSettings::read(lookUp, report).maxFileSize, 0U);
        EXPECT_THAT(report.str(), HasSubstr(size));
    }
}

class LogFile : public testing::Test
{
protected:
    static bool append(Kr::LgFile& file, const std::string& text)
    {
        return file.append(text.data(), text.size()) == text.size();
    }

    Kr::LgFileSettings at(const std::string& name) const
    {
        Kr::LgFileSettings settings;
        settings.path = folder / name;
        return settings;
    }

    const Folder folder;
};

TEST_F(LogFile, IsMadeByTheFirstTextWithItsFolders)
{
    const auto file = Kr::LgFile::create(at("a/b/c.log"));
    EXPECT_FALSE(std::filesystem::exists(folder / "a"));
    EXPECT_TRUE(append(*file, "one\n"));
    EXPECT_TRUE(append(*Kr::LgFile::create(at("a/b/c.log")), "two\n"));
    EXPECT_TRUE(append(*file, "three\n"));
    EXPECT_TRUE(file->sync());
    EXPECT_EQ(readFile(folder / "a/b/c.log"), "one\ntwo\nthree\n");
}

/// A folder that cannot be made, a file without write access, a name that is a folder, an
/// impossible name: the file says why, and takes text again when the reason has gone.
TEST_F(LogFile, SaysWhyItCannotBeOpenedAndRecovers)
{
    std::ofstream(folder / "plain") << "x";
    std::filesystem::create_directory(folder / "folder.log");
    for (const char* name : {"plain/events.log", "folder.log", "what?.log"})
    {
        const auto file = Kr::LgFile::create(at(name));
        EXPECT_FALSE(append(*file, "text\n")) << name;
        EXPECT_NE(file->getProblem(), "") << name;
        EXPECT_TRUE(file->sync());
    }
    const auto file = Kr::LgFile::create(at("plain/events.log"));
    EXPECT_FALSE(append(*file, "lost\n"));
    std::filesystem::remove(folder / "plain");
    EXPECT_TRUE(append(*file, "text\n"));
    EXPECT_EQ(readFile(folder / "plain/events.log"), "text\n");
}

TEST_F(LogFile, LeavesAFileThatWasMovedAway)
{
    const auto file = Kr::LgFile::create(at("events.log"));
    append(*file, "one\n");
    std::filesystem::rename(folder / "events.log", folder / "moved.log");
    append(*file, "two\n");
    EXPECT_EQ(readFile(folder / "moved.log"), "one\n");
    EXPECT_EQ(readFile(folder / "events.log"), "two\n");
}

TEST_F(LogFile, RotatesAtItsSizeAlsoWithTwoWriters)
{
    Kr::LgFileSettings settings = at("events.log");
    settings.maxSize = 100;
    settings.keptFiles = 2;
    const auto first = Kr::LgFile::create(settings);
    const auto second = Kr::LgFile::create(settings);
    for (int i = 0; i < 40; ++i)
        ASSERT_TRUE(append(i % 2 == 0 ? *first : *second, std::to_string(1000000 + i) + " ~\n"));
    // Ten lines of ten bytes each fit into a file.
    EXPECT_THAT(readLines(folder / "events.log"), testing::SizeIs(10));
    EXPECT_EQ(readLines(folder / "events.log").back(), "1000039 ~");
    EXPECT_EQ(readLines(folder / "events.log.1").front(), "1000020 ~");
    EXPECT_EQ(readLines(folder / "events.log.2").front(), "1000010 ~");
    EXPECT_FALSE(std::filesystem::exists(folder / "events.log.3"));
}

TEST_F(LogFile, AnExclusiveFileIsMadeAnewAndNobodyElseWrites)
{
    Kr::LgFileSettings settings = at("timeline.json");
    settings.isExclusive = true;
    std::ofstream(folder / "timeline.json") << "what an earlier run left";
    auto first = Kr::LgFile::create(settings);
    EXPECT_TRUE(append(*first, "first\n"));
    const auto second = Kr::LgFile::create(settings);
    EXPECT_FALSE(append(*second, "second\n"));
    EXPECT_NE(second->getProblem(), "");
    EXPECT_EQ(readFile(folder / "timeline.json"), "first\n");
    first.reset();
    EXPECT_TRUE(append(*second, "second\n"));
}

TEST_F(LogFile, TwoWritersKeepTheirLinesWhole)
{
    constexpr int lines = 100;
    const auto run = [this](char letter)
    {
        const auto file = Kr::LgFile::create(at("events.log"));
        for (int i = 0; i < lines; ++i)
            ASSERT_TRUE(append(*file, std::string(3000, letter) + "\n"));
    };
    std::thread other(run, 'a');
    run('b');
    other.join();
    std::vector<std::string> all;
    for (const auto& entry : std::filesystem::directory_iterator(folder.getPath()))
        for (const std::string& line : readLines(entry.path().string()))
            all.push_back(line); // on a busy machine one may go on in a file of its own
    EXPECT_EQ(all.size(), 2U * lines);
    for (const std::string& line : all)
        EXPECT_EQ(line, std::string(3000, line[0]));
}

/// A process that was killed in the middle of a write has left a half line.
TEST_F(LogFile, EndsAHalfLineBeforeItsOwn)
{
    const auto file = Kr::LgFile::create(at("events.log"));
    append(*file, "one\n");
    for (int i = 0; i < 2; ++i)
    {
        std::ofstream(folder / "events.log", std::ios::app | std::ios::binary) << "half";
        EXPECT_TRUE(append(*file, "whole\n"));
    }
    EXPECT_EQ(readFile(folder / "events.log"), "one\nhalf\nwhole\nhalf\nwhole\n");
}

/// Another one that has the files open, and logs nothing, does not keep the file from its limit.
TEST_F(LogFile, RotatesAlthoughAnIdleProcessHasTheFilesOpen)
{
    Kr::LgFileSettings settings = at("events.log");
    settings.maxSize = 100;
    const auto file = Kr::LgFile::create(settings);
    std::vector<std::unique_ptr<Kr::LgFile>> idle;
    for (int i = 0; i < 50; ++i)
    {
        idle.push_back(Kr::LgFile::create(settings));
        ASSERT_TRUE(
            append(*(i % 10 == 0 ? idle.back() : file), std::to_string(1000000 + i) + " ~\n"));
        EXPECT_LE(std::filesystem::file_size(folder / "events.log"), 100U);
    }
    for (const auto& each : idle)
        each->rest();
    EXPECT_TRUE(append(*file, "the last\n"));
    EXPECT_EQ(readLines(folder / "events.log.1").size(), 10U);
}

/// One wait, then a file of its own; nothing is rotated meanwhile; it comes back and says so.
TEST_F(LogFile, GoesOnInAFileOfItsOwnWhileAnotherHoldsTheLock)
{
    Kr::LgFileSettings settings = at("events.log");
    settings.maxSize = 100;
    const auto file = Kr::LgFile::create(settings);
    append(*file, "first\n");
    Kr::LgInterProcessLock other(settings.path);
    ASSERT_EQ(other.acquire(std::chrono::seconds(0)), Kr::LgInterProcessLock::Outcome::held);
    testing::internal::CaptureStderr();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(append(*file, "meanwhile\n"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20 * std::chrono::milliseconds(500));
    EXPECT_EQ(countLines(testing::internal::GetCapturedStderr()), 1U);
    EXPECT_EQ(file->takeNews(), "");
    EXPECT_EQ(readFile(settings.path), "first\n");
    const std::string own =
        folder / ("events-" + std::to_string(Kr::ProcessIdentity::getProcessId()) + ".log");
    EXPECT_EQ(readLines(own).size() + readLines(own + ".1").size(), 20U);
    other.release();
    while (file->takeNews().empty())
        ASSERT_TRUE(append(*file, "x\n"));
    EXPECT_EQ(readLines(settings.path).back(), "x");
    EXPECT_FALSE(std::filesystem::exists(own + ".lock"));
}

} // namespace
