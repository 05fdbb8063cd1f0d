#include <base/internal/testing/testTapReport.h>

#include <base/internal/testing/testWords.h>

#include <ostream>

namespace Kr
{

namespace
{

/// A number sign would begin a directive.
std::string escape(const std::string& text)
{
    std::string escaped;
    for (const char c : text)
    {
        if (c == '#' || c == '\\')
            escaped += '\\';
        escaped += c == '\n' ? ' ' : c;
    }
    return escaped;
}

} // namespace

TestTapReport::TestTapReport(std::ostream& os)
    : _os(os)
{
}

void TestTapReport::begin(const TestPlan& plan)
{
    _os << "TAP version 14\n1.." << plan.tests << '\n';
    if (plan.seed)
        _os << "# --shuffle=" << *plan.seed << '\n';
    _os << std::flush;
}

void TestTapReport::take(const TestResult& result)
{
    _os << (result.state == TestResult::Failed ? "not ok " : "ok ") << ++_number << " - "
        << escape(result.getFullName());
    if (result.state == TestResult::Skipped)
        _os << " # SKIP " << escape(result.skipReason);
    _os << '\n';
    writeDetails(result);
    _os << std::flush;
}

/// A block of YAML, its texts in the literal form, which escapes nothing.
void TestTapReport::writeDetails(const TestResult& result) const
{
    _os << "  ---\n  duration_ms: " << static_cast<std::uint64_t>(result.seconds * 1e3) << '\n';
    if (result.leak.isAny())
        _os << "  leaves: \"" << TestWords::describeLeak(result.leak) << "\"\n";
    if (!result.failures.empty())
        _os << "  message: |2\n";
    for (const TestFailure& failure : result.failures)
        _os << TestWords::indent(TestWords::describeFailure(failure), "    ");
    if (!result.messages.empty())
        _os << "  log: |2\n";
    for (const std::string& message : result.messages)
        _os << TestWords::indent(message, "    ");
    _os << "  ...\n";
}

void TestTapReport::takeOutput(const std::string& text)
{
    _os << TestWords::indent(text, "# ") << std::flush;
}

void TestTapReport::end(const TestTotals& totals)
{
    if (totals.isStopped)
        _os << "Bail out! at the first failure\n" << std::flush;
}

} // namespace Kr
