#include "allocationCount.h"
#include "otherLibrary.h"
#include "raised.h"

#include <base/arrayPtr.h>
#include <base/assert.h>
#include <base/exSysError.h>
#include <base/inEx.h>
#include <base/inInitMgr.h>
#include <base/objPtr.h>
#include <base/osEnv.h>
#include <base/threadName.h>
#include <base/trace.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <thread>
#include <typeinfo>
#include <unistd.h>
#include <vector>

namespace
{

using Kr::Trace;
using Kr::TraceManager;
using Raise = Kr::TraceManager::Raise;

class ExText : public Kr::ExConcrete<ExText, std::logic_error, Kr::ExBase>
{
public:
    explicit ExText(const char* text, const char* file = "f", int line = 12)
        : ExConcrete(file, line)
    {
        setReason(text);
    }
    void append(const char* text) { setReason(text); }
};

template <class T>
class ExOf : public ExText
{
public:
    using ExText::ExText;
};

/// Catches what the other library and this one raise by both of their sides.
template <class Exception, class Standard, class Function>
void expectCaught(Function raise)
{
    try
    {
        raise();
    }
    catch (const Standard& error)
    {
        EXPECT_TRUE(typeid(error) == typeid(Exception));
        const auto& own = dynamic_cast<const Kr::ExBase&>(error);
        EXPECT_STREQ(own.getReason(), error.what());
        const Kr::ObjPtr<Kr::ExBase> copy(own.clone());
        EXPECT_TRUE(typeid(*copy) == typeid(Exception));
        EXPECT_STREQ(error.what(), dynamic_cast<const std::exception&>(*copy).what());
        EXPECT_STREQ(own.getFileName(), copy->getFileName());
        EXPECT_EQ(own.getLineNo(), copy->getLineNo());
    }
}

TEST(Errors, CrossTheLibraryBoundaryByTypeAndByStandardBase)
{
    expectCaught<Kr::ExInternalError, std::runtime_error>(
        [] { Kr::Assertions::throwProgramAborted("file", 3); });
    expectCaught<Kr::ExInternalError, std::runtime_error>([] { Kr::OsEnv::putVariable("x"); });
    expectCaught<Kr::InEx::ExFinaliseBeforeInit, std::runtime_error>(
        [] { Kr::InInitMgr::getInstance().finalize(); });
    expectCaught<Other::ExOther, std::logic_error>([] { Other::raiseOther(); });
    expectCaught<Kr::InSingletonEx::ExNotInitialized, std::runtime_error>(
        [] { Other::getServiceInLibrary(); });
    expectCaught<Kr::ExBadException, std::bad_exception>(
        [] { Kr::raise<Kr::ExBadException>(KR_HERE); });
    expectCaught<Kr::ExSysErrorANSI, std::runtime_error>(
        [] { Kr::raise(Kr::ExSysErrorANSI(KR_HERE)); });
    expectCaught<Kr::ExSysErrorWindows, std::runtime_error>(
        [] { Kr::raise(Kr::ExSysErrorWindows(KR_HERE)); });
}

template <std::size_t Size>
std::string sourceName(const char (&path)[Size], const char* root = "")
{
    return Kr::SourceName(path, root).getChars();
}

TEST(Errors, PositionIsTheNameInTheTree)
{
    const auto misuse = [] { KR_ASSERT_AT(1 > 2, 314); };
    EXPECT_EQ("Assertion '1 > 2' failed.",
              reasonOf<Kr::ExInternalError>(misuse, "tests/errorsTest.cpp", 314));
    // the library's own
    EXPECT_EQ("src/base/pow2.inline", sourceName("/usr/include/libKRbase/base/pow2.inline"));
    EXPECT_EQ("src/base/dtTimeIndex", sourceName("C:/kr/include/libKRbase/base/dtTimeIndex.h"));
    EXPECT_EQ("src/base/inInitMgr", sourceName("D:\\src\\base\\inInitMgr.cpp"));
    EXPECT_EQ("src/base/internal/init/a", sourceName("/w/libKRbase/src/base/internal/init/a.cpp"));
    // a program's
    EXPECT_EQ("/w/libKRbase/demo/main.cpp", sourceName("/w/libKRbase/demo/main.cpp"));
    EXPECT_EQ("src/ui/window.cpp", sourceName("/home/me/src/viewer/src/ui/window.cpp"));
    EXPECT_EQ("/home/me/viewer/ui/window.cpp", sourceName("/home/me/viewer/ui/window.cpp"));
    EXPECT_EQ("ui/window.cpp", sourceName("../.././ui/window.cpp"));
    for (const char* root : {"/home/me/viewer", "/home/me/viewer/"})
        EXPECT_EQ("src/ui/window.cpp", sourceName("/home/me/viewer/src/ui/window.cpp", root));
    EXPECT_EQ("ui/window.cpp", sourceName("C:\\me\\viewer\\ui\\window.cpp", "C:/me/viewer"));
    EXPECT_EQ("/me/viewer2/a.cpp", sourceName("/me/viewer2/a.cpp", "/me/viewer"));
}

TEST(Errors, TextsAreAppendedAndCut)
{
    const std::string path(300, 'p');
    EXPECT_EQ(path.substr(0, 127), ExText("", path.c_str()).getFileName());
    EXPECT_EQ(path.substr(0, 127), ExText("", path.substr(0, 127).c_str()).getFileName());
    EXPECT_STREQ("", ExText(nullptr, nullptr).getFileName());

    ExText text("a");
    text.append("b");
    text.append(nullptr);
    EXPECT_STREQ("ab", text.getReason());

    ExText full(std::string(1000, 'x').c_str());
    full.append(std::string(30, 'y').c_str());
    EXPECT_EQ(std::string(1000, 'x') + std::string(23, 'y'), full.what());
    full.append("z");
    EXPECT_EQ(1023u, std::strlen(full.what()));
    EXPECT_EQ(1023u, std::strlen(full.getDetailedReason()));
    EXPECT_EQ(2000u / 2 + 23, std::strlen(ExText(std::string(5000, 'x').c_str()).what()));
}

TEST(Errors, DetailedReasonIsFrozenAtFirstUseUntilAssigned)
{
    ExText error("r");
    const std::string expected =
        std::string("[Exception Type = ") + typeid(ExText).name() + ", File = f, Line=12]\nr";
    EXPECT_EQ(expected, error.getDetailedReason());
    error.append("s");
    EXPECT_STREQ("rs", error.getReason());
    EXPECT_EQ(expected, error.getDetailedReason());
    EXPECT_EQ(expected, ExText(error).getDetailedReason());

    ExText assigned("long", "file", 7);
    assigned.getDetailedReason();
    assigned = ExText("b", "g", 8);
    EXPECT_STREQ("b", assigned.what());
    EXPECT_THAT(assigned.getDetailedReason(), testing::EndsWith(", File = g, Line=8]\nb"));
}

TEST(Errors, CarryTheSystemsErrorAndText)
{
    errno = 2;
    const Kr::ExSysErrorANSI ansi(KR_HERE);
    EXPECT_EQ(2, ansi.getError());
    EXPECT_STREQ(std::strerror(2), ansi.what());

    std::thread fresh([] { // a new thread has no error yet
        const Kr::ExSysErrorWindows success(KR_HERE);
        EXPECT_EQ(0u, success.getErrorCode());
        EXPECT_NE('\0', success.what()[0]);
        EXPECT_EQ(std::string::npos, std::string(success.what()).find_first_of("\r\n"));
    });
    fresh.join();
}

TEST(Errors, AssertionTexts)
{
    const auto reason = [](auto action) { return reasonOf<Kr::ExInternalError>(action, "f", 9); };
    using Kr::Assertions;
    EXPECT_EQ("Program aborted.", reason([] { Assertions::throwProgramAborted("f", 9); }));
    EXPECT_EQ("Assertion '' failed.",
              reason([] { Assertions::throwAssertionFailed("f", 9, nullptr); }));
    EXPECT_EQ(std::string("Assertion 'x' failed, errno = 2 (") + std::strerror(2) + ").",
              reason([] { Assertions::throwSysAssertionFailed("f", 9, "x", 2); }));
    const std::string longText(3000, 'x');
    EXPECT_EQ(("Assertion '" + longText).substr(0, 1023),
              reason([&] { Assertions::throwAssertionFailed("f", 9, longText.c_str()); }));
}

// --- the trace ---

class RecordingTrace : public Trace
{
public:
    void printException(const Kr::ExBase& exception, const char* file, int line) noexcept override
    {
        reason = exception.getReason();
        position = file + (':' + std::to_string(line));
    }
    std::string reason, position;
};

TEST(Trace, AProgramsOwnSeesEveryRaise)
{
    RecordingTrace trace;
    Trace& previous = TraceManager::getInstance().setTrace(trace);
    EXPECT_EQ(&trace, &TraceManager::getInstance().getTrace());
    EXPECT_THROW(Kr::raise(ExText("raised", "f", 3)), ExText);
    EXPECT_EQ("raised f:3", trace.reason + ' ' + trace.position);
    EXPECT_THROW(KR_ASSERT(1 > 2), Kr::ExInternalError);
    EXPECT_THAT(trace.position, testing::StartsWith("src/base/assert:"));
    EXPECT_EQ(&trace, &TraceManager::getInstance().setTrace(previous));
    EXPECT_THROW(Kr::raise(ExText("not seen")), ExText);
    EXPECT_EQ("Assertion '1 > 2' failed.", trace.reason);
    {
        RecordingTrace forgotten;
        TraceManager::getInstance().setTrace(forgotten);
    }
    EXPECT_EQ(&previous, &TraceManager::getInstance().getTrace());
}

TEST(Trace, ListsTheLastRaisesOldestFirst)
{
    for (int i = 0; i < 40; ++i)
        EXPECT_THROW(Kr::raise(ExText(std::to_string(i).c_str(), "g", i)), ExText);
    std::vector<std::string> reasons;
    const auto visit = [](const Raise& raise, void* context)
    {
        EXPECT_STREQ(typeid(ExText).name(), raise.type);
        EXPECT_STREQ("g", raise.file);
        EXPECT_EQ(std::to_string(raise.line), raise.reason);
        EXPECT_LT(std::chrono::system_clock::now() - raise.time, std::chrono::minutes(5));
        EXPECT_LE(raise.time, std::chrono::system_clock::now());
        static_cast<std::vector<std::string>*>(context)->emplace_back(raise.reason);
    };
    TraceManager::getInstance().visitRaises(visit, &reasons);
    ASSERT_EQ(32u, reasons.size());
    for (std::size_t i = 0; i < reasons.size(); ++i)
        EXPECT_EQ(std::to_string(i + 8), reasons[i]);

    EXPECT_THROW(Kr::raise(ExText(std::string(1000, 'x').c_str())), ExText);
    Kr::ThreadName::set("loader");
    EXPECT_THROW(Kr::raise(ExOf<int>("one\nof\r\nthree\x1B", "g", 40)), ExOf<int>);
    Kr::ThreadName::set(nullptr);
    std::ostringstream list;
    TraceManager::getInstance().listRaises(list);
    EXPECT_THAT(list.str(),
                testing::AllOf(testing::HasSubstr(" g:39 (anonymous namespace)::ExText: 39\n"),
                               testing::HasSubstr(
                                   ": " + std::string(TraceManager::reasonSize - 1, 'x') + '\n'),
                               testing::EndsWith(" (loader) g:40 (anonymous namespace)::ExOf<int>: "
                                                 "one\\nof\\r\\nthree\\x1B\n")));
}

TEST(Trace, RaisesOfManyThreadsAreNeverMixed)
{
    constexpr int threadCount = 4;
    constexpr int raiseCount = 5000;
    std::atomic<int> running{threadCount};
    std::vector<std::thread> raisers;
    for (int t = 0; t < threadCount; ++t)
        raisers.emplace_back(
            [t, &running]
            {
                for (int i = 0; i < raiseCount; ++i)
                {
                    const std::string text(static_cast<std::size_t>(1 + i % 200),
                                           static_cast<char>('a' + t));
                    const ExText error(text.c_str(), text.substr(0, 1).c_str(), 1 + i % 200);
                    TraceManager::getInstance().reportException(error, "f", 1);
                }
                --running;
            });
    int seen = 0;
    while (running != 0 || seen == 0)
        TraceManager::getInstance().visitRaises(
            [](const Raise& raise, void* context)
            {
                const std::string reason(raise.reason);
                if (raise.file[0] >= 'a' + threadCount) // of an earlier test
                    return;
                EXPECT_EQ(static_cast<std::size_t>(raise.line), reason.size());
                EXPECT_EQ(std::string::npos, reason.find_first_not_of(raise.file[0]));
                ++*static_cast<int*>(context);
            },
            &seen);
    for (std::thread& raiser : raisers)
        raiser.join();
}

TEST(Trace, NeitherAllocatesNorFormatsNorChangesErrno)
{
    const ExText error("r");
    TraceManager& manager = TraceManager::getInstance();
    int count = 0;
    errno = 77;
    const int before = getAllocationCount();
    for (int i = 0; i < 100; ++i)
        manager.reportException(error, "f", 1);
    manager.visitRaises([](const Raise&, void* context) { ++*static_cast<int*>(context); }, &count);
    EXPECT_EQ(before, getAllocationCount());
    EXPECT_EQ(32, count);
    EXPECT_EQ(77, errno);
    ExText later(error); // the detailed reason is still open
    later.append("s");
    EXPECT_THAT(later.getDetailedReason(), testing::EndsWith("rs"));
}

/// Raises under these options, in the process of a death test, first under a trace of the program's
/// own. All output goes to where the test looks for it, and what is not flushed is lost.
[[noreturn]] void raiseUnder(const char* options)
{
    ::dup2(::fileno(stderr), ::fileno(stdout));
    Kr::OsEnv::putVariable(options);
    RecordingTrace own;
    Trace& previous = TraceManager::getInstance().setTrace(own);
    for (const char* reason : {"unseen", "first", "second"})
    {
        EXPECT_THROW(Kr::raise(ExText(reason)), ExText);
        std::fprintf(stderr, "%s was raised\n", reason);
        TraceManager::getInstance().setTrace(previous);
    }
    std::_Exit(0);
}

TEST(TraceDeathTest, OptionsOfTheEnvironment)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // the options are read once in a process
    const auto exited = testing::ExitedWithCode(0);
    const std::string detail = std::string("Raise at f:12: [Exception Type = ") +
                               typeid(ExText).name() + ", File = f, Line=12]\n";
    const auto skipped = [](const std::string& word)
    {
        return "KR_TRACE_OPTIONS: skipping the unknown word '" + word +
               "'; the words are none, exceptions, history.\n";
    };
    const std::string unseen = "unseen was raised\n";
    const std::string silent = unseen + "first was raised\nsecond was raised\n";
    const std::string printed =
        unseen + detail + "first\nfirst was raised\n" + detail + "second\nsecond was raised\n";
    using testing::AllOf;
    using testing::HasSubstr;
    using testing::Not;
    EXPECT_EXIT(raiseUnder("KR_TRACE_OPTIONS=exceptions"), exited,
                AllOf(HasSubstr(printed), Not(HasSubstr("KR_TRACE_OPTIONS"))));
    EXPECT_EXIT(raiseUnder("KR_TRACE_OPTIONS=none"), exited,
                AllOf(HasSubstr(silent), Not(HasSubstr("KR_TRACE_OPTIONS"))));
    EXPECT_EXIT(raiseUnder("KR_TRACE_OPTIONS=, Loud , exceptions\t,Loud,louder,"), exited,
                AllOf(HasSubstr(skipped("Loud") + skipped("louder") + printed),
                      Not(HasSubstr(skipped("Loud") + skipped("Loud")))));
    EXPECT_DEATH(
        []() noexcept
        {
            Kr::OsEnv::putVariable("KR_TRACE_OPTIONS=history");
            Kr::raise(ExText("fatal"));
        }(),
        AllOf(HasSubstr("The last raises:\n"),
              HasSubstr("(anonymous namespace)::ExText: fatal\n")));
}

// --- owners ---

struct Counted
{
    explicit Counted(int& alive)
        : count(alive)
    {
        ++count;
    }
    virtual ~Counted() { --count; }
    int& count;
};

TEST(ObjPtr, PassesItsObjectOn)
{
    int alive = 0;
    {
        Kr::ObjPtr<Counted> first(new Counted(alive));
        Counted* const object = first.get();
        Kr::ObjPtr<Counted> second(first);
        EXPECT_TRUE(first.isNull());
        EXPECT_EQ(object, second.get());
        second = *&second; // self-assignment keeps it
        EXPECT_EQ(1, alive);
        first = Kr::ObjPtr<Counted>(new Counted(alive));
        EXPECT_EQ(2, alive);
        first = second; // deletes what it held
        EXPECT_EQ(1, alive);
        EXPECT_TRUE(second.isNull());
        const auto factory = [&] { return Kr::ObjPtrRet<Counted>(new Counted(alive)); };
        second = factory();
        factory(); // not kept: deleted
        EXPECT_EQ(2, alive);
        Kr::ArrayPtr<char> text(Kr::ArrayPtrRet<char>(new char[3]));
        text[2] = 'x';
        EXPECT_EQ('x', text.get()[2]);
    }
    EXPECT_EQ(0, alive);
}

} // namespace
