#include <base/internal/testing/testJunitReport.h>

#include <base/internal/errors/calendar.h>
#include <base/internal/testing/testWords.h>
#include <base/internal/testing/testXml.h>
#include <base/raise.h>
#include <base/testEx.h>

#include <algorithm>
#include <cstdio>

namespace Kr
{

namespace
{

std::string writeAttribute(const char* name, std::string_view value)
{
    return std::string(" ") + name + "=\"" + TestXml::escape(value) + '"';
}

std::string writeSeconds(double seconds)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.6f", seconds);
    return text;
}

/// In universal time; the form has no place for a zone.
std::string writeTime(std::chrono::system_clock::time_point time)
{
    const CalendarTime date = getCalendarTime(std::chrono::system_clock::to_time_t(time));
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", static_cast<int>(date.year),
                  date.month, date.day, date.hour, date.minute, date.second);
    return text;
}

/// The form tells failures, which a check has found, from errors, which nobody has expected.
bool isError(const TestResult& result)
{
    return std::any_of(result.failures.begin(), result.failures.end(),
                       [](const TestFailure& failure) {
                           return failure.kind == TestFailure::Exception ||
                                  failure.kind == TestFailure::End;
                       });
}

const char* getType(const TestFailure& failure)
{
    constexpr const char* types[] = {"check", "exception", "leak", "end"};
    return types[failure.kind];
}

/// Of several failures, which the form has no place for, the element holds all texts.
std::string writeFailure(const TestResult& result)
{
    const char* const element = isError(result) ? "error" : "failure";
    const TestFailure& first = result.failures.front();
    std::string text = std::string("      <") + element + writeAttribute("type", getType(first)) +
                       writeAttribute("message", first.text.substr(0, first.text.find('\n'))) + '>';
    for (const TestFailure& failure : result.failures)
        text += TestXml::escape(TestWords::describeFailure(failure) + '\n');
    for (const std::string& message : result.messages)
        text += TestXml::escape("log: " + message + '\n');
    return text + "</" + element + ">\n";
}

std::string writeCase(const TestResult& result)
{
    const std::string start = "    <testcase" + writeAttribute("name", result.name) +
                              writeAttribute("classname", result.group) +
                              writeAttribute("time", writeSeconds(result.seconds));
    if (result.state == TestResult::Passed)
        return start + "/>\n";
    const std::string inner =
        result.state == TestResult::Failed
            ? writeFailure(result)
            : "      <skipped" + writeAttribute("message", result.skipReason) + "/>\n";
    return start + ">\n" + inner + "    </testcase>\n";
}

/// What there is to know beside failures.
std::string writeOutput(const std::vector<TestResult>& results, const std::string& output)
{
    std::string text;
    for (const TestResult& result : results)
    {
        if (result.leak.isAny())
            text += result.getFullName() + " leaves " + TestWords::describeLeak(result.leak) + '\n';
        for (const std::string& message : result.messages)
            text += result.getFullName() + " log: " + message + '\n';
    }
    return "    <system-out>" + TestXml::escape(text + output) + "</system-out>\n";
}

std::unique_ptr<OsSafeWriter> open(const OsFilePath& path)
{
    try
    {
        return std::make_unique<OsSafeWriter>(path);
    }
    catch (const ExBase& error)
    {
        raise<TestEx::ExBadFile>(KR_HERE, path.getChars(), error.getReason());
    }
}

} // namespace

TestJunitReport::TestJunitReport(const OsFilePath& path)
    : _writer(open(path))
{
}

void TestJunitReport::begin(const TestPlan&)
{
    _newest = std::chrono::system_clock::now();
}

void TestJunitReport::take(const TestResult& result)
{
    getSuite(result.group).results.push_back(result);
    _newest = std::chrono::system_clock::now();
}

void TestJunitReport::takeOutput(const std::string& text)
{
    if (!_suites.empty())
        _suites.back().output += text;
}

TestJunitReport::Suite& TestJunitReport::getSuite(const std::string& group)
{
    if (_suites.empty() || _suites.back().results.front().group != group)
    {
        _suites.emplace_back();
        _suites.back().begin = _newest;
    }
    return _suites.back();
}

std::string TestJunitReport::writeSuite(const Suite& suite, std::size_t number)
{
    std::string cases;
    double seconds = 0.;
    std::size_t failures = 0;
    std::size_t errors = 0;
    std::size_t skipped = 0;
    for (const TestResult& result : suite.results)
    {
        cases += writeCase(result);
        seconds += result.seconds;
        if (result.state == TestResult::Failed)
            ++(isError(result) ? errors : failures);
        skipped += result.state == TestResult::Skipped;
    }
    return "  <testsuite" + writeAttribute("id", std::to_string(number)) +
           writeAttribute("package", "") + writeAttribute("name", suite.results.front().group) +
           writeAttribute("hostname", "localhost") +
           writeAttribute("timestamp", writeTime(suite.begin)) +
           writeAttribute("tests", std::to_string(suite.results.size())) +
           writeAttribute("failures", std::to_string(failures)) +
           writeAttribute("errors", std::to_string(errors)) +
           writeAttribute("skipped", std::to_string(skipped)) +
           writeAttribute("time", writeSeconds(seconds)) + ">\n    <properties/>\n" + cases +
           writeOutput(suite.results, suite.output) + "    <system-err/>\n  </testsuite>\n";
}

void TestJunitReport::end(const TestTotals&)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n";
    for (std::size_t i = 0; i < _suites.size(); ++i)
        text += writeSuite(_suites[i], i);
    text += "</testsuites>\n";
    _writer->write(text.data(), static_cast<unsigned long>(text.size()));
    _writer->commit();
}

} // namespace Kr
