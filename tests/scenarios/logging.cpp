// The logger in whole programs: each case runs this program again, with settings in the
// environment, and reads the files that it left.

#include "scenario.h"

#include <base/inInitGuard.h>
#include <base/inInitMgr.h>
#include <base/inSettings.h>
#include <base/lgListener.h>
#include <base/lgTimeline.h>
#include <base/log.h>
#include <base/osEnv.h>
#include <base/osProcess.h>
#include <base/threadName.h>

#include <allocationCount.h>
#include <logTestFiles.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace
{

using LogTest::Folder;
using LogTest::readFile;
using LogTest::readLines;
using LogTest::textOf;

// --- the programs ------------------------------------------------------------------------------

/// The library, started, and a group.
struct Program
{
    Program()
        : guard(argc, argv)
        , group(Kr::LgMajorGroup::getInstanceForName("Test"), "Scenario")
    {
    }

    int argc = 0;
    const char* const* argv = nullptr;
    const Kr::InInitGuard guard;
    const Kr::LgMinorGroup group;
};

std::unique_ptr<Program> leftOpen; // what the programs that end early never stop

const Kr::LgMinorGroup& openProgram()
{
    leftOpen = std::make_unique<Program>();
    return leftOpen.release()->group;
}

const Kr::LgMinorGroup* lateGroup = nullptr;

struct LateLogger
{
    LateLogger() = default;
    LateLogger(const LateLogger&) = delete;
    LateLogger& operator=(const LateLogger&) = delete;
    ~LateLogger() { KR_LOG(lateGroup, Warning) << "from a static object"; }
};

void endNormally()
{
    const Program program;
    KR_LOG(program.group, Warning) << "first";
    KR_LOG(program.group, Error) << "second";
}

void endByExit()
{
    KR_LOG(openProgram(), Warning) << "first";
    std::exit(0);
}

void endByExitWithStatics()
{
    static const LateLogger late;
    lateGroup = &openProgram();
    KR_LOG(lateGroup, Warning) << "first";
    std::exit(0);
}

/// A thread-local object that goes after what the logger keeps for the thread.
struct LastWords
{
    LastWords() = default;
    LastWords(const LastWords&) = delete;
    LastWords& operator=(const LastWords&) = delete;
    ~LastWords() { KR_LOG(lateGroup, Warning) << "from a thread-local object"; }

    void arm() {} // nothing to keep: some runtimes free the object before they destroy it
};

/// A thread-local object logs while its thread ends, and another thread ends the program, on which
/// the static objects go.
void endByExitOfAThread()
{
    static const LateLogger late;
    lateGroup = &openProgram();
    std::thread(
        []
        {
            thread_local LastWords words;
            words.arm();
            KR_LOG(lateGroup, Warning) << "first";
        })
        .join();
    std::thread(
        []
        {
            KR_LOG(lateGroup, Warning) << "second";
            std::exit(0);
        })
        .join();
}

void endByException()
{
    KR_LOG(openProgram(), Warning) << "first";
    throw std::runtime_error("nobody catches this");
}

void endByTerminate()
{
    std::thread other([&group = openProgram()] { KR_LOG(group, Warning) << "first"; });
    other.join();
    std::terminate();
}

void endAfterFatal()
{
    const Kr::LgMinorGroup& group = openProgram();
    KR_LOG(group, Warning) << "first";
    KR_LOG(group, FatalError) << "second";
    std::_Exit(0);
}

void endAfterInternalInFullQueue()
{
    const Kr::LgMinorGroup& group = openProgram();
    Kr::LgLog::getQueue(); // in which the thread stays
    for (int i = 0; i < 5000; ++i)
        KR_LOG(group, Warning) << "filler";
    KR_LOG(group, InternalError) << "last";
    std::_Exit(0);
}

/// The process ends outright while threads log and the reader writes.
void endInTheMiddle()
{
    const Kr::LgMinorGroup& group = openProgram();
    for (int i = 0; i < 4; ++i)
        std::thread(
            [&]
            {
                for (;;)
                    KR_LOG(group, Warning) << "whole " << std::string(200, 'w').c_str();
            })
            .detach();
    const std::string path = std::string(Kr::InInitMgr::getEnv("KR_LOG_DIR")) + "/events.log";
    std::error_code error;
    while (std::filesystem::file_size(path, error) < 300000 || error)
        std::this_thread::yield();
    std::_Exit(0);
}

constexpr int floodThreads = 16;
constexpr int floodMessages = 3000;

/// Threads that each log and end, in two waves, while the reader drains.
void flood()
{
    std::optional<Program> program(std::in_place);
    for (int wave = 0; wave < 2; ++wave)
    {
        std::vector<std::thread> threads;
        for (int i = 0; i < floodThreads; ++i)
            threads.emplace_back(
                [&program]
                {
                    for (int n = 0; n < floodMessages; ++n)
                        KR_LOG(program->group, Warning) << "message " << n;
                });
        for (std::thread& thread : threads)
            thread.join();
    }
    program.reset();
    std::printf("lost %lu\n", static_cast<unsigned long>(Kr::LgLog::getLostCount()));
}

/// The longest texts that are never cut in blocking mode, and in any mode one that always is.
void longTexts()
{
    std::optional<Program> program(std::in_place);
    const std::string text(16383, 't');
    for (int i = 0; i < 60; ++i)
        KR_LOG(program->group, Warning) << text.c_str();
    KR_LOG(program->group, Error) << std::string(40000, 'x').c_str();
    program.reset();
    std::printf("%lu cut\n", static_cast<unsigned long>(Kr::LgLog::getCutCount()));
}

void routes()
{
    const Program program;
    KR_LOG(program.group, Warning) << "to the output";
    KR_LOG(program.group, Error) << "to the error stream";
    KR_LOG(program.group, Informational) << "to a path";
    KR_LOG(program.group, Tracing) << "nowhere";
    KR_LOG(program.group, Profiling) << "to prof.log";
}

int countCalls(int& calls)
{
    return ++calls;
}

int nested(const Kr::LgMinorGroup& group)
{
    KR_LOG(group, Warning) << "inner";
    return 1;
}

/// Everything that a statement may meet.
void statements()
{
    int calls = 0;
    const Kr::LgMinorGroup* none = nullptr;
    KR_LOG(none, Error) << countCalls(calls);
    std::optional<Program> program(std::in_place);
    const Kr::LgMinorGroup& group = program->group;
    KR_LOG(group, Tracing) << countCalls(calls);
    SCENARIO_CHECK(calls == 0);
    bool isElse = false;
    if (calls != 0)
        KR_LOG(group, Error) << "not taken";
    else
        isElse = true;
    SCENARIO_CHECK(isElse);
    KR_LOG(&group, Warning) << "outer " << nested(group) << " done";
    try
    {
        KR_LOG(group, Warning) << "cut" << (throw std::runtime_error("thrown"), 1);
    }
    catch (const std::runtime_error&)
    {
        KR_LOG(group, Warning) << "caught";
    }
    Kr::LgQueue* const queue = Kr::LgLog::getQueue();
    SCENARIO_CHECK(queue->getThreadId() == 0 && queue->reserveEntry(Kr::LgTypes::Warning));
    KR_LOG(group, Warning) << "beside";
    queue->getStream() << "by hand";
    queue->addEntry();
    std::thread([] { SCENARIO_CHECK(Kr::LgLog::getQueue()->getThreadId() != 0); }).join();
    Kr::LgLog::flush();
    program.reset();
    SCENARIO_CHECK(Kr::LgLog::getQueue() == nullptr);
}

constexpr int burstMessages = 5000;

/// More at once than a queue holds, each from a thread that has been drained before; and from one
/// that stays in the queue whose address it has asked for.
void bursts()
{
    const Program program;
    for (const bool asks : {false, true})
    {
        KR_LOG(program.group, Warning) << "makes the queue";
        Kr::LgLog::flush();
        const Kr::LgQueue* const queue = asks ? Kr::LgLog::getQueue() : nullptr;
        for (int i = 0; i < burstMessages; ++i)
            KR_LOG(program.group, Warning) << i;
        SCENARIO_CHECK(!asks || queue == Kr::LgLog::getQueue());
        SCENARIO_CHECK(asks || Kr::LgLog::getLostCount() == 0);
        Kr::LgLog::flush();
    }
}

/// Stops the reader while it exists.
class StoppedReader
{
public:
    explicit StoppedReader(const Kr::LgMinorGroup& group)
        : _listener([this](const Kr::LgMessage&) { stop(); })
    {
        KR_LOG(group, Error) << "stops the reader";
        while (!_isReading)
            std::this_thread::yield();
    }
    StoppedReader(const StoppedReader&) = delete;
    StoppedReader& operator=(const StoppedReader&) = delete;
    ~StoppedReader() { _mayGoOn = true; }

private:
    void stop()
    {
        _isReading = true;
        while (!_mayGoOn)
            std::this_thread::yield();
    }

    std::atomic<bool> _isReading{false};
    std::atomic<bool> _mayGoOn{false};
    const Kr::LgListener _listener;
};

/// Some 30 queues' texts.
void floodWith(const Kr::LgMinorGroup& group)
{
    for (int i = 0; i < 3000; ++i)
        KR_LOG(group, Warning) << "message " << i << " of " << 0.5 << 1e300 << 1.L;
}

/// Once a thread has its queue, and all spare ones have been made, neither its statements nor the
/// reader allocate.
void allocations()
{
    const Program program;
    {
        const StoppedReader stopped(program.group);
        floodWith(program.group);
    }
    Kr::LgLog::flush();
    const int before = getAllocationCount();
    floodWith(program.group);
    Kr::LgLog::flush();
    SCENARIO_CHECK(getAllocationCount() == before);
}

/// Logs whatever way it can while the reader takes its queue's entries.
class LoggingObserver : public Kr::LgQueue::Observer
{
public:
    explicit LoggingObserver(const Kr::LgMinorGroup& group)
        : _group(group)
    {
    }

    void entryAdded(Kr::LgQueue*) override {}
    void entryRemoved(Kr::LgQueue* queue) override
    {
        KR_LOG(_group, FatalError) << "from the output path";
        SCENARIO_CHECK(Kr::LgLog::getQueue() == nullptr);
        if (std::this_thread::get_id() == _producer) // and not the reader's thread
            SCENARIO_CHECK(!queue->reserveEntry(Kr::LgTypes::Error));
        Kr::LgLog::flush();
    }
    void waitForSpace(Kr::LgQueue*, int) override {}

private:
    const Kr::LgMinorGroup& _group;
    const std::thread::id _producer = std::this_thread::get_id();
};

/// Fatal errors, which this thread takes to the file itself.
void reentry()
{
    const Program program;
    Kr::LgLog::getQueue()->changeObserver(
        Kr::ObjPtr<Kr::LgQueue::Observer>(new LoggingObserver(program.group)));
    KR_LOG(program.group, FatalError) << "first";
    KR_LOG(program.group, FatalError) << "second";
}

void spans()
{
    const Program program;
    const Kr::LgSpan whole("the \"whole\" run");
    std::thread other(
        []
        {
            for (int i = 0; i < 3; ++i)
                const Kr::LgSpan span("part");
        });
    other.join();
    KR_LOG(program.group, Warning) << "in between";
}

const Kr::LgGroup selfOwned("Test", "SelfOwned");

/// A group that owns itself, threads with names, and a listener that ends itself.
void comforts()
{
    SCENARIO_CHECK(!selfOwned.isLevelEnabled(Kr::LgTypes::FatalError));
    std::string heard;
    const Kr::LgListener listener(
        [&](const Kr::LgMessage& message)
        {
            heard += std::string(message.threadName) + '/' + std::string(message.group) + '/' +
                     std::string(message.text) + '|';
            KR_LOG(selfOwned, Error) << "dropped";
        });
    {
        const Program program;
        KR_LOG(selfOwned, Warning) << "unnamed";
        Kr::LgLog::flush();
        Kr::ThreadName::set("painter");
        KR_LOG(selfOwned, Warning) << "named";
        std::thread(
            []
            {
                Kr::ThreadName::set("a thread whose name is longer than that");
                const Kr::LgSpan span("part");
                KR_LOG(selfOwned, Warning) << "other";
            })
            .join();
        std::unique_ptr<Kr::LgListener> once;
        once = std::make_unique<Kr::LgListener>([&](const Kr::LgMessage&) { once.reset(); });
        KR_LOG(selfOwned, Warning) << "last";
        Kr::LgLog::flush();
        SCENARIO_CHECK(once == nullptr);
    }
    SCENARIO_CHECK(!selfOwned.isLevelEnabled(Kr::LgTypes::FatalError));
    SCENARIO_CHECK(heard ==
                   "/SelfOwned/unnamed|painter/SelfOwned/named|"
                   "a thread whose name is longer t/SelfOwned/other|painter/SelfOwned/last|");
}

/// Prints where each setting came from.
void listSettings()
{
    int argc = 3;
    const char* const words[] = {"program", "--logger.warning=stderr", "--logger.blocking"};
    const char* const* argv = words;
    const Kr::InInitGuard guard(argc, argv);
    const Kr::LgMinorGroup group(Kr::LgMajorGroup::getInstanceForName("Test"), "Scenario");
    KR_LOG(group, Warning) << "to the error stream";
    Kr::InSettings::dumpAll(std::cout);
}

void silent()
{
    const Program program;
}

void spansCutShort()
{
    const Kr::LgMinorGroup& group = openProgram();
    {
        const Kr::LgSpan span("part");
    }
    KR_LOG(group, FatalError) << "the end";
    std::_Exit(0);
}

/// A thread that outlives the logger, with a group of either kind, through two of its lives.
void logAfterTheStop()
{
    std::optional<Program> program(std::in_place);
    const Kr::LgMinorGroup group = program->group;
    std::atomic<bool> isStopping{false};
    std::atomic<int> rounds{0};
    std::thread other(
        [&]
        {
            for (; !isStopping; ++rounds)
            {
                KR_LOG(group, Warning) << "message";
                KR_LOG(selfOwned, Warning) << "message";
            }
        });
    const auto waitForRounds = [&]
    {
        for (const int end = rounds + 100; rounds < end;)
            std::this_thread::yield();
    };
    waitForRounds();
    program.reset();
    std::string filler; // takes the memory of what the stop has freed
    for (int i = 0; i < 10000; ++i)
        filler += std::make_unique<std::string>(64, 'x')->back();
    waitForRounds();
    SCENARIO_CHECK(!group.isLevelEnabled(Kr::LgTypes::InternalError));
    Kr::LgLog::init();
    SCENARIO_CHECK(&Kr::LgMajorGroup::getInstanceForName("Test") != nullptr);
    SCENARIO_CHECK(group.isLevelEnabled(Kr::LgTypes::Warning));
    waitForRounds();
    isStopping = true;
    other.join();
    Kr::LgLog::destroy();
}

/// More than the limits of the groups allow.
void exceedLimits()
{
    std::optional<Program> program(std::in_place);
    const Kr::LgMinorGroup other(Kr::LgMajorGroup::getInstanceForName("Free"), "Free");
    const unsigned long long start = Kr::HwCounter::timeStamp();
    do
    {
        KR_LOG(program->group, Warning) << "limited";
        KR_LOG(program->group, Error) << "more severe";
        KR_LOG(other, Warning) << "free";
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    } while (Kr::HwCounter::seconds(start, Kr::HwCounter::timeStamp()) < 1.2);
    KR_LOG(program->group, FatalError) << "fatal";
    program.reset();
    std::printf("lost %lu\n", static_cast<unsigned long>(Kr::LgLog::getLostCount()));
}

constexpr int tracingFlood = 20000; // more than all spare queues hold

/// A flood of tracing, then warnings and errors, into queues that nobody reads meanwhile.
void fillTheQueue(const Kr::LgMinorGroup& group, std::size_t size, int warnings, int errors)
{
    std::optional<StoppedReader> stopped(std::in_place, group);
    const std::string text(size, 'x');
    for (int i = 0; i < tracingFlood; ++i)
        KR_LOG(group, Tracing) << text.c_str();
    for (int i = 0; i < warnings; ++i)
        KR_LOG(group, Warning) << text.c_str();
    for (int i = 0; i < errors; ++i)
        KR_LOG(group, Error) << text.c_str();
    stopped.reset();
    Kr::LgLog::flush();
}

/// Of messages, then of characters.
void fillTheQueues()
{
    const Program program;
    fillTheQueue(program.group, 10, 90, 30);
    fillTheQueue(program.group, 500, 5, 2);
}

constexpr int unreadMessages = 5000;

/// More than a pipe holds, and a log of its own.
void logToAStream()
{
    std::optional<Program> program(std::in_place);
    for (int i = 0; i < unreadMessages; ++i)
    {
        KR_LOG(program->group, Warning) << "message " << i << std::string(100, 's').c_str();
        if (i % 100 == 0)
        {
            KR_LOG(program->group, Profiling) << "beside";
            Kr::LgLog::flush();
        }
    }
    KR_LOG(program->group, FatalError) << "the end";
    program.reset();
    std::printf("lost %lu\n", static_cast<unsigned long>(Kr::LgLog::getLostCount()));
}

constexpr Scenario::Case programs[] = {
    {"logToAStream", logToAStream},
    {"fillTheQueues", fillTheQueues},
    {"logAfterTheStop", logAfterTheStop},
    {"exceedLimits", exceedLimits},
    {"endNormally", endNormally},
    {"endByExit", endByExit},
    {"endByExitWithStatics", endByExitWithStatics},
    {"endByExitOfAThread", endByExitOfAThread},
    {"endByException", endByException},
    {"endByTerminate", endByTerminate},
    {"endAfterFatal", endAfterFatal},
    {"endAfterInternalInFullQueue", endAfterInternalInFullQueue},
    {"endInTheMiddle", endInTheMiddle},
    {"flood", flood},
    {"longTexts", longTexts},
    {"routes", routes},
    {"statements", statements},
    {"allocations", allocations},
    {"bursts", bursts},
    {"reentry", reentry},
    {"spans", spans},
    {"spansCutShort", spansCutShort},
    {"silent", silent},
    {"comforts", comforts},
    {"listSettings", listSettings},
};

// --- the cases ---------------------------------------------------------------------------------

std::string ownPath;

/// Starts a program with its output in the folder's files "out" and "err"; returns its status.
int start(const Folder& folder, const std::string& program)
{
    const std::string quote = ownPath.find(' ') == std::string::npos ? "" : "\"";
    return std::system((quote + ownPath + quote + " run " + program + " >" + folder / "out" +
                        " 2>" + folder / "err")
                           .c_str());
}

void set(const std::string& name, const std::string& value)
{
    Kr::OsEnv::putVariable((name + '=' + value).c_str());
}

/// A folder that the programs log into.
class LogFolder : public Folder
{
public:
    LogFolder() { set("KR_LOG_DIR", getPath()); }
};

std::vector<std::string> textsIn(const std::string& path)
{
    std::vector<std::string> texts;
    for (const std::string& line : readLines(path))
        texts.push_back(textOf(line));
    return texts;
}

std::string joined(const std::vector<std::string>& texts)
{
    std::string all;
    for (const std::string& text : texts)
        all += text + '|';
    return all;
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

/// However a program ends, what it logged is in the file.
void endings()
{
    const std::map<std::string, std::string> expected = {
        {"endNormally", "first|second|"},
        {"endByExit", "first|"},
        {"endByExitWithStatics", "first|from a static object|"},
        {"endByExitOfAThread", "first|from a thread-local object|second|from a static object|"},
        {"endByException", "first|"},
        {"endByTerminate", "first|"},
        {"endAfterFatal", "first|second|"},
    };
    for (const auto& [program, texts] : expected)
    {
        const LogFolder folder;
        start(folder, program);
        const std::string found = joined(textsIn(folder / "events.log"));
        if (found != texts)
            std::fprintf(stderr, "%s: %s\n", program.c_str(), found.c_str());
        SCENARIO_CHECK(found == texts);
    }
    const LogFolder folder;
    start(folder, "endAfterInternalInFullQueue");
    SCENARIO_CHECK(textsIn(folder / "events.log").back() == "last");
}

void killed()
{
    const LogFolder folder;
    start(folder, "endInTheMiddle");
    std::vector<std::string> texts = textsIn(folder / "events.log");
    // The system may end a write at the boundary of a page when the process is killed in it; that
    // can only be the last line.
    if (!texts.empty() && contains(texts.back(), "<cut>"))
        texts.pop_back();
    int whole = 0;
    for (const std::string& text : texts)
    {
        // A full ring ends a message between two values; where it has room for a character, a
        // number sign stands for the rest.
        const bool isCut = contains(text, "#") || contains(text, "Event overflow [") ||
                           text.empty() || text == "whole ";
        SCENARIO_CHECK(isCut || text == "whole " + std::string(200, 'w'));
        whole += isCut ? 0 : 1;
    }
    SCENARIO_CHECK(whole != 0);
}

/// Counts the flood's messages in the files, and those that overflow entries report.
struct FloodCount
{
    explicit FloodCount(const std::string& path)
    {
        for (const std::string& text : textsIn(path))
        {
            int count = 0;
            if (std::sscanf(text.c_str(), "message %d", &count) == 1)
                ++messages;
            else if (std::sscanf(text.c_str(), "Event overflow [%d]", &count) == 1)
                lost += count;
            else if (text.find("Another process held this file") != 0) // a machine may be busy
                ++others;
        }
    }

    int messages = 0;
    int lost = 0;
    int others = 0;
};

constexpr int floodTotal = 2 * floodThreads * floodMessages;

void accounts()
{
    const LogFolder folder;
    set("KR_LOG_INFORMATIONAL", "events.log");
    SCENARIO_CHECK(start(folder, "flood") == 0);
    const FloodCount count(folder / "events.log");
    SCENARIO_CHECK(count.messages + count.lost == floodTotal);
    SCENARIO_CHECK(count.messages > 0 && count.others == 0);
}

void blocking()
{
    const LogFolder folder;
    set("KR_BLOCKING_TRACE", "on");
    SCENARIO_CHECK(start(folder, "flood") == 0);
    const FloodCount count(folder / "events.log");
    SCENARIO_CHECK(count.messages == floodTotal && count.lost == 0 && count.others == 0);
    SCENARIO_CHECK(contains(readFile(folder / "out"), "lost 0"));

    const LogFolder longFolder;
    SCENARIO_CHECK(start(longFolder, "longTexts") == 0);
    const std::vector<std::string> texts = textsIn(longFolder / "events.log");
    SCENARIO_CHECK(texts.size() == 61 && texts.back() == "#");
    SCENARIO_CHECK(std::count(texts.begin(), texts.end(), std::string(16383, 't')) == 60);
    SCENARIO_CHECK(readFile(longFolder / "out").substr(0, 5) == "1 cut");
}

/// Two processes write at once, rotating each other's files, and no line is lost or cut.
void twoProcesses()
{
    const LogFolder folder;
    const Folder outputs[2];
    set("KR_BLOCKING_TRACE", "on");
    set("KR_LOG_MAX_SIZE", "2M");
    set("KR_LOG_MAX_FILES", "99");
    std::thread other([&] { SCENARIO_CHECK(start(outputs[0], "flood") == 0); });
    SCENARIO_CHECK(start(outputs[1], "flood") == 0);
    other.join();
    int messages = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.getPath()))
    {
        const FloodCount count(entry.path().string());
        messages += count.messages;
        SCENARIO_CHECK(count.lost == 0 && count.others == 0);
        SCENARIO_CHECK(entry.file_size() <= 2U << 20);
    }
    SCENARIO_CHECK(messages == 2 * floodTotal);
    SCENARIO_CHECK(std::filesystem::exists(folder / "events.log.1"));
}

void settings()
{
    const LogFolder folder;
    set("KR_LOG_DEFAULT_LEVEL", "Tracing");
    set("KR_LOG_GROUPS", "Test=Profiling");
    set("KR_LOG_WARNING", "stdout");
    set("KR_LOG_RECOVERABLE_ERROR", "stderr");
    set("KR_LOG_INFORMATIONAL", folder / "sub/info.log");
    set("KR_LOG_TRACING", "none");
    set("KR_LOG_FATAL_ERROR", "fiel");
    set("KR_LOG_FORMAT", "json");
    SCENARIO_CHECK(start(folder, "routes") == 0);
    const std::string output = readFile(folder / "out");
    SCENARIO_CHECK(contains(output, "Invalid value for KR_LOG_FATAL_ERROR: fiel"));
    SCENARIO_CHECK(contains(output, "to the output"));
    SCENARIO_CHECK(contains(readFile(folder / "err"), "to the error stream"));
    SCENARIO_CHECK(contains(readFile(folder / "prof.log"), "to prof.log"));
    SCENARIO_CHECK(!std::filesystem::exists(folder / "events.log"));
    const std::string lines = readFile(folder / "sub/info.log"); // the library's own come first
    const std::string line = lines.substr(lines.rfind('\n', lines.size() - 2) + 1);
    SCENARIO_CHECK(LogTest::JsonCheck::isValue(line));
    SCENARIO_CHECK(contains(line, "\"level\":\"Informational\"") &&
                   contains(line, "\"thread\":0,\"group\":\"Scenario\",\"text\":\"to a path\"}"));
}

/// The settings are the package's variables: reached by options, told with their sources.
void variables()
{
    const LogFolder folder;
    set("KR_LOG_WARNING", "none");
    set("KR_INTERNAL_INTERPROCESS_LOG_LOCK", "OFF");
    SCENARIO_CHECK(start(folder, "listSettings") == 0);
    SCENARIO_CHECK(contains(readFile(folder / "err"), "to the error stream"));
    const std::string list = readFile(folder / "out");
    SCENARIO_CHECK(contains(list, "logger.warning = 'stderr', from option --logger.warning"));
    SCENARIO_CHECK(contains(list, "not environment variable KR_LOG_WARNING: 'none'"));
    SCENARIO_CHECK(contains(list, "logger.interProcessLock = 'false', from environment"));
    SCENARIO_CHECK(contains(list, "logger.maxFiles = '1', from the default"));
}

void comfortable()
{
    const LogFolder folder;
    set("KR_LOG_TIMELINE", "timeline.json");
    SCENARIO_CHECK(start(folder, "comforts") == 0);
    const std::string log = readFile(folder / "events.log");
    SCENARIO_CHECK(contains(log, ":main ") && contains(log, ":painter "));
    SCENARIO_CHECK(contains(log, ":a thread whose name is longer t SelfOwned other\n"));
    const std::string timeline = readFile(folder / "timeline.json");
    SCENARIO_CHECK(LogTest::JsonCheck::isValue(timeline));
    SCENARIO_CHECK(contains(timeline, "\"name\":\"painter\"") &&
                   contains(timeline, "\"name\":\"a thread whose name is longer t\""));
}

void statementForm()
{
    const LogFolder folder;
    SCENARIO_CHECK(start(folder, "statements") == 0);
    SCENARIO_CHECK(joined(textsIn(folder / "events.log")) ==
                   "outer 1 done|inner|cut|caught|by hand|beside|");
    SCENARIO_CHECK(start(folder, "reentry") == 0);
    SCENARIO_CHECK(joined(textsIn(folder / "events.log")) ==
                   "outer 1 done|inner|cut|caught|by hand|beside|first|second|");
    SCENARIO_CHECK(start(folder, "bursts") == 0);
    const std::vector<std::string> texts = textsIn(folder / "events.log");
    const auto first = std::find(texts.begin(), texts.end(), "makes the queue");
    SCENARIO_CHECK(texts.end() - first > burstMessages);
    for (int i = 0; i < burstMessages; ++i)
        SCENARIO_CHECK(first[i + 1] == std::to_string(i));
    set("KR_LOG_WARNING", "none"); // what writing to a file allocates is the system's
    set("KR_LOG_INFORMATIONAL", "none");
    SCENARIO_CHECK(start(folder, "allocations") == 0);
}

/// Where the folder cannot be, the program goes on, says so once, counts every message once, and
/// tells at the end how many there were.
void unwritable()
{
    const LogFolder folder;
    {
        std::FILE* file = std::fopen((folder / "plain").c_str(), "w");
        std::fclose(file);
    }
    set("KR_LOG_DIR", folder / "plain/logs");
    SCENARIO_CHECK(start(folder, "flood") == 0);
    const std::vector<std::string> complaints = readLines(folder / "err");
    SCENARIO_CHECK(complaints.size() == 2 && contains(complaints[0], "The log cannot be written"));
    SCENARIO_CHECK(contains(complaints[1], std::to_string(floodTotal) + " messages were lost"));
    unsigned long lost = 0;
    SCENARIO_CHECK(std::sscanf(readFile(folder / "out").c_str(), "lost %lu", &lost) == 1);
    SCENARIO_CHECK(lost == floodTotal);
}

void timeline()
{
    const LogFolder folder;
    set("KR_LOG_TIMELINE", "timeline-%p.json");
    SCENARIO_CHECK(start(folder, "spans") == 0);
    SCENARIO_CHECK(start(folder, "spansCutShort") == 0);
    int complete = 0;
    int cutShort = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.getPath()))
    {
        if (entry.path().extension() != ".json")
            continue;
        const std::string text = readFile(entry.path().string());
        SCENARIO_CHECK(contains(text, "\"name\":\"part\"") && contains(text, "\"dur\":"));
        complete += LogTest::JsonCheck::isValue(text) && contains(text, "the \\\"whole\\\" run") &&
                            contains(text, "\"cat\":\"Warning\",\"name\":\"in between\"")
                        ? 1
                        : 0;
        cutShort += LogTest::JsonCheck::isValue(text) && contains(text, "the end") ? 1 : 0;
        SCENARIO_CHECK(
            contains(text, "\"process_name\",\"args\":{\"name\":\"scenario_logging\"}") &&
            contains(text, "\"cat\":\"span\"") &&
            contains(text, "\"cat\":\"clock\",\"name\":\"20"));
    }
    SCENARIO_CHECK(complete == 1 && cutShort == 1);
    // A program without an event leaves the timeline of an earlier one alone.
    set("KR_LOG_TIMELINE", "earlier.json");
    SCENARIO_CHECK(start(folder, "spans") == 0);
    const std::string before = readFile(folder / "earlier.json");
    SCENARIO_CHECK(start(folder, "silent") == 0);
    SCENARIO_CHECK(!before.empty() && readFile(folder / "earlier.json") == before);
}

void afterTheStop()
{
    const LogFolder folder;
    SCENARIO_CHECK(start(folder, "logAfterTheStop") == 0);
    SCENARIO_CHECK(contains(readFile(folder / "events.log"), "message"));
}

/// Each level has its own limit in each second; what was withheld is told and counted.
void limited()
{
    const LogFolder folder;
    set("KR_LOG_LIMITS", "Test=20,Other=x");
    SCENARIO_CHECK(start(folder, "exceedLimits") == 0);
    std::map<std::string, unsigned long> counts;
    unsigned long withheld = 0;
    for (const std::string& text : textsIn(folder / "events.log"))
    {
        unsigned long number = 0;
        unsigned long errors = 0;
        unsigned long warnings = 0;
        const bool isReport = std::sscanf(text.c_str(),
                                          "%lu messages were withheld, above the limit of 20 a "
                                          "second: %lu Error, %lu Warning",
                                          &number, &errors, &warnings) == 3;
        SCENARIO_CHECK(isReport == (number != 0) && number == errors + warnings);
        withheld += number;
        ++counts[isReport ? "report" : text];
    }
    const unsigned long sent = counts["free"];
    SCENARIO_CHECK(counts["limited"] >= 20 && counts["limited"] <= 60 && sent > 100);
    SCENARIO_CHECK(counts["limited"] + counts["more severe"] + withheld == 2 * sent);
    SCENARIO_CHECK(counts["fatal"] == 1 && counts["report"] >= 1 && counts["report"] <= 4);
    const std::string output = readFile(folder / "out");
    SCENARIO_CHECK(contains(output, "Invalid value for KR_LOG_LIMITS: Other=x"));
    unsigned long lost = 0;
    const std::size_t last = std::min(output.find("lost "), output.size());
    SCENARIO_CHECK(std::sscanf(output.c_str() + last, "lost %lu", &lost) == 1 && lost == withheld);
}

/// Tracing gives way: every warning and error is there, and the record tells of which level the
/// lost ones were.
void severity()
{
    const LogFolder folder;
    set("KR_LOG_DEFAULT_LEVEL", "Tracing");
    SCENARIO_CHECK(start(folder, "fillTheQueues") == 0);
    std::map<std::string, int> counts;
    std::map<std::string, int> lost;
    for (const std::string& line : readLines(folder / "events.log"))
    {
        const std::string level = line.substr(29, line.find("  ", 29) - 29);
        const std::string text = textOf(line);
        int sum = 0;
        int tracing = 0;
        char last = '?';
        if (std::sscanf(text.c_str(), "Event overflow [%d]: %d Tracin%c", &sum, &tracing, &last) ==
            3)
            lost[sum == tracing && last == 'g' ? "Tracing" : text] += sum;
        else if (text[0] == 'x' || text == "#")
            ++counts[level];
    }
    SCENARIO_CHECK(counts["Warning"] == 90 + 5 && counts["Error"] == 30 + 2);
    SCENARIO_CHECK(lost.size() == 1 && lost["Tracing"] > 0);
    SCENARIO_CHECK(counts["Tracing"] + lost["Tracing"] == 2 * tracingFlood);
    SCENARIO_CHECK(counts["Tracing"] > 8000 + 7000); // those that are lost are the last
}

/// A stream that nobody reads stops neither the program nor its other logs, and what it does not
/// take is counted.
void unreadStream()
{
    const LogFolder folder;
    set("KR_LOG_WARNING", "stderr");
    set("KR_LOG_GROUPS", "Test=Profiling");
    Kr::OsCommand command(ownPath, {"run", "logToAStream"});
    command.pipeStream(Kr::OsCommand::Errors).writeFile(Kr::OsCommand::Output, folder / "out");
    Kr::OsProcess process(command);
    SCENARIO_CHECK(process.wait(30.));
    const std::string errors = process.communicate().errors;
    std::size_t found = 0;
    for (std::size_t at = 0; (at = errors.find("message ", at)) != errors.npos; ++at)
        ++found;
    unsigned long lost = 0;
    SCENARIO_CHECK(std::sscanf(readFile(folder / "out").c_str(), "lost %lu", &lost) == 1);
    SCENARIO_CHECK(found > 100 && lost > 100 && found + lost >= unreadMessages);
    SCENARIO_CHECK(textsIn(folder / "prof.log").size() == unreadMessages / 100);
    SCENARIO_CHECK(textsIn(folder / "events.log").back() == "the end");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "run") == 0)
    {
        for (const Scenario::Case& program : programs)
            if (std::strcmp(program.name, argv[2]) == 0)
                program.run();
        return Scenario::failures() == 0 ? 0 : 1;
    }
    ownPath = argv[0];
    const Scenario::Case cases[] = {
        {"endings", endings},
        {"killed", killed},
        {"accounts", accounts},
        {"blocking", blocking},
        {"twoProcesses", twoProcesses},
        {"settings", settings},
        {"variables", variables},
        {"comfortable", comfortable},
        {"statementForm", statementForm},
        {"unwritable", unwritable},
        {"timeline", timeline},
        {"afterTheStop", afterTheStop},
        {"limited", limited},
        {"severity", severity},
        {"unreadStream", unreadStream},
    };
    return Scenario::run(cases, argc, argv);
}
