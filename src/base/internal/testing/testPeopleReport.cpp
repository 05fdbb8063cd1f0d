#include <base/internal/testing/testPeopleReport.h>

#include <base/internal/testing/testWords.h>

#include <ostream>

namespace Kr
{

TestPeopleReport::TestPeopleReport(std::ostream& os, bool isColoured)
    : _os(os)
    , _isColoured(isColoured)
{
}

void TestPeopleReport::begin(const TestPlan& plan)
{
    _plan = plan;
    _os << TestWords::count(plan.tests, "test");
    if (plan.rounds > 1)
        _os << " in " << plan.rounds << " rounds";
    if (plan.seed)
        _os << ", --shuffle=" << *plan.seed;
    _os << '\n' << std::flush;
}

void TestPeopleReport::take(const TestResult& result)
{
    switch (result.state)
    {
    case TestResult::Passed:
        _os << paint("ok      ", Colour::Green);
        break;
    case TestResult::Failed:
        _os << paint("FAILED  ", Colour::Red);
        break;
    case TestResult::Skipped:
        _os << paint("skipped ", Colour::Yellow);
        break;
    }
    _os << result.getFullName() << "  " << TestWords::describeTime(result.seconds);
    if (result.state == TestResult::Skipped)
        _os << ": " << result.skipReason;
    if (result.leak.isAny())
        _os << paint(", leaves " + TestWords::describeLeak(result.leak), Colour::Yellow);
    _os << '\n';
    if (result.state == TestResult::Failed)
        writeDetails(result);
    _hasFailedSinceOutput |= result.state == TestResult::Failed;
    _os << std::flush;
}

void TestPeopleReport::writeDetails(const TestResult& result) const
{
    for (const TestFailure& failure : result.failures)
    {
        const std::string text = TestWords::describeFailure(failure);
        const std::size_t end = text.find('\n');
        _os << "    " << text.substr(0, end) << '\n';
        if (end != std::string::npos)
            _os << TestWords::indent(std::string_view(text).substr(end + 1), "        ");
    }
    for (const std::string& message : result.messages)
        _os << TestWords::indent(message, "    log: ");
}

void TestPeopleReport::takeOutput(const std::string& text)
{
    if (_hasFailedSinceOutput && !text.empty())
        _os << TestWords::indent(text, "    | ") << std::flush;
    _hasFailedSinceOutput = false;
}

void TestPeopleReport::end(const TestTotals& totals)
{
    _os << '\n';
    for (const std::string& name : totals.failed)
        _os << paint("FAILED  ", Colour::Red) << name << '\n';
    _os << paint(std::to_string(totals.passed) + " passed", Colour::Green) << ", "
        << paint(std::to_string(totals.failed.size()) + " failed",
                 totals.failed.empty() ? Colour::Green : Colour::Red);
    if (totals.skipped > 0)
        _os << ", " << totals.skipped << " skipped";
    if (totals.leaking > 0)
        _os << ", " << totals.leaking << " leaking";
    _os << "; " << TestWords::count(totals.checks, "check") << " in "
        << TestWords::describeTime(totals.seconds) << '\n';
    const std::size_t done = totals.passed + totals.failed.size() + totals.skipped;
    if (totals.isStopped && done < _plan.tests)
        _os << "stopped at the first failure; " << TestWords::count(_plan.tests - done, "test")
            << " not run\n";
    _os << std::flush;
}

std::string TestPeopleReport::paint(std::string_view text, Colour colour) const
{
    if (!_isColoured)
        return std::string(text);
    return "\x1b[" + std::to_string(static_cast<int>(colour)) + 'm' + std::string(text) + "\x1b[0m";
}

} // namespace Kr
