#include <base/internal/testing/testRun.h>

#include <base/assert.h>
#include <base/hmLedger.h>
#include <base/internal/errors/demangle.h>
#include <base/internal/testing/testException.h>
#include <base/internal/testing/testHoldings.h>
#include <base/testEnd.h>
#include <base/testNote.h>
#include <base/trace.h>

#include <atomic>
#include <utility>

namespace Kr
{

namespace
{

std::atomic<TestRun*> current{nullptr};

constexpr std::size_t keptMessages = 1000;

/// The times of raises are kept in microseconds.
std::chrono::system_clock::time_point getNow()
{
    return std::chrono::time_point_cast<std::chrono::microseconds>(
        std::chrono::system_clock::now());
}

struct RaiseList
{
    std::chrono::system_clock::time_point begin;
    std::string text;
    int count = 0;
};

void addRaise(const TraceRaise& raise, void* context)
{
    RaiseList& list = *static_cast<RaiseList*>(context);
    if (raise.time < list.begin)
        return;
    ++list.count;
    list.text += std::string("\n  ") + raise.file + ':' + std::to_string(raise.line) + ": " +
                 demangle(raise.type) + ": " + raise.reason;
}

} // namespace

TestRun::TestRun(const TestCase& test)
    : _test(test)
    , _begin(getNow())
{
    TestRun* none = nullptr;
    KR_ASSERT(current.compare_exchange_strong(none, this));
    _result.group = test.getGroupName();
    _result.name = test.getName();
}

TestRun::~TestRun()
{
    current = nullptr;
}

TestRun& TestRun::getCurrent()
{
    TestRun* const isATestRunning = current;
    KR_ASSERT(isATestRunning);
    return *isATestRunning;
}

void TestRun::perform()
{
    const auto begin = std::chrono::steady_clock::now();
    try
    {
        _test.run();
    }
    catch (const TestEnd&) // of which the result tells
    {
    }
    catch (...)
    {
        takeException();
    }
    _result.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void TestRun::takeException()
{
    const HmLedger::Scope scope(TestHoldings::account);
    TestFailure failure;
    failure.kind = TestFailure::Exception;
    const bool isKnown = TestException::findPosition(failure);
    failure.text = TestException::describe() + describePlace() + TestNote::getUnwound() +
                   TestNote::getAll() + listRaises(isKnown ? 2 : 1);
    takeFailure(std::move(failure));
}

/// The newest check, behind which it happened.
std::string TestRun::describePlace() const
{
    if (_checkFile == nullptr)
        return std::string("\nbefore the first check of ") + _test.getFile() + ':' +
               std::to_string(_test.getLine());
    return std::string("\nbehind the check at ") + _checkFile + ':' + std::to_string(_checkLine);
}

/// Lists what was raised meanwhile, if it is so many.
std::string TestRun::listRaises(int least) const
{
    RaiseList list{_begin, "\nraised since the test began:"};
    TraceManager::getInstance().visitRaises(addRaise, &list);
    return list.count < least ? std::string() : list.text;
}

void TestRun::takeCheck(const char* file, int line)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    ++_result.checks;
    _checkFile = file;
    _checkLine = line;
}

void TestRun::takeFailure(TestFailure failure)
{
    const HmLedger::Scope scope(TestHoldings::account);
    const std::lock_guard<std::mutex> lock(_mutex);
    _result.failures.push_back(std::move(failure));
}

void TestRun::takeSkip(const std::string& reason)
{
    const HmLedger::Scope scope(TestHoldings::account);
    const std::lock_guard<std::mutex> lock(_mutex);
    _result.skipReason = reason;
    _result.state = TestResult::Skipped;
}

void TestRun::takeMessage(std::string text)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    if (_result.messages.size() < keptMessages)
        _result.messages.push_back(std::move(text));
    else
        ++_droppedMessages;
}

TestResult TestRun::getResult()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    if (_droppedMessages > 0)
        _result.messages.push_back("(and " + std::to_string(_droppedMessages) + " more)");
    if (!_result.failures.empty())
        _result.state = TestResult::Failed;
    return _result;
}

} // namespace Kr
