#include <base/testPerformer.h>

#include <base/hmLedger.h>
#include <base/internal/testing/testException.h>
#include <base/internal/testing/testHoldings.h>
#include <base/internal/testing/testRun.h>
#include <base/internal/testing/testWords.h>
#include <base/lgListener.h>
#include <base/lgLog.h>
#include <base/testEnd.h>
#include <base/testNote.h>
#include <base/testValue.h>

#include <cmath>
#include <iostream>
#include <utility>

namespace Kr
{

namespace
{

void takeMessage(TestRun& run, const LgMessage& message, bool isShown)
{
    const HmLedger::Scope scope(TestHoldings::account);
    std::string text = LgTypes::getLevelName(message.level);
    if (!message.group.empty())
        text.append(1, ' ').append(message.group);
    text.append(": ").append(message.text);
    if (isShown)
        std::cerr << "log: " + text + '\n';
    run.takeMessage(std::move(text));
}

/// Makes what every thread has once it logs or checks, so that no test is charged with it.
void prepareThread()
{
    LgLog::getQueue();
    LgLog::flush();
    TestNote::forgetUnwound();
}

} // namespace

TestPerformer::TestPerformer() = default;

bool TestPerformer::setMessagesShown(bool on) noexcept
{
    return std::exchange(_areMessagesShown, on);
}

bool TestPerformer::setLeaksFail(bool on) noexcept
{
    return std::exchange(_doLeaksFail, on);
}

TestResult TestPerformer::perform(const TestCase& test)
{
    TestRun run(test);
    const LgListener listener([this, &run](const LgMessage& message)
                              { takeMessage(run, message, _areMessagesShown); });
    prepareThread();
    const TestHoldings before = TestHoldings::count();
    run.perform();
    TestNote::forgetUnwound();
    LgLog::flush();
    const TestLeak leak = TestHoldings::count().since(before);
    if (_doLeaksFail && leak.isAny())
        run.takeFailure({TestFailure::Leak, test.getFile(), test.getLine(),
                         "It leaves behind " + TestWords::describeLeak(leak) + '.'});
    TestResult result = run.getResult();
    result.leak = leak;
    return result;
}

bool TestPerformer::check(Mode mode, bool holds, const char* text, const std::string& values,
                          const char* file, int line)
{
    TestRun& run = TestRun::getCurrent();
    run.takeCheck(file, line);
    TestNote::forgetUnwound();
    if (holds)
        return true;
    const HmLedger::Scope scope(TestHoldings::account);
    std::string whole = text;
    if (!values.empty())
        whole += '\n' + values;
    run.takeFailure({TestFailure::Check, file, line, whole + TestNote::getAll()});
    if (mode == EndTest)
        throw TestEnd();
    return false;
}

bool TestPerformer::check(Mode mode, bool holds, const std::string& text, const std::string& values,
                          const char* file, int line)
{
    return check(mode, holds, text.c_str(), values, file, line);
}

bool TestPerformer::checkNear(Mode mode, double left, double right, double tolerance,
                              const char* text, const char* file, int line)
{
    // Equal infinities have no difference.
    if (left == right || std::abs(left - right) <= tolerance)
        return check(mode, true, text, {}, file, line);
    const std::string values =
        TestText::describeBoth(TestText::describeDouble(left), TestText::describeDouble(right)) +
        "\napart: " + TestText::describeDouble(std::abs(left - right));
    return check(mode, false, text, values, file, line);
}

void TestPerformer::skip(const std::string& reason)
{
    TestRun::getCurrent().takeSkip(reason);
    throw TestEnd();
}

std::string TestPerformer::describeException()
{
    return TestException::describe();
}

} // namespace Kr
