#include <base/internal/testing/testRunner.h>

#include <base/internal/testing/testColour.h>
#include <base/internal/testing/testIsolation.h>
#include <base/internal/testing/testJunitReport.h>
#include <base/internal/testing/testPeopleReport.h>
#include <base/internal/testing/testSettings.h>
#include <base/internal/testing/testTapReport.h>
#include <base/osEnv.h>
#include <base/testPerformer.h>

#include <chrono>
#include <iostream>

namespace Kr
{

namespace
{

/// Without an order of the user's, as https://no-color.org asks for.
bool isColoured(TestOptions::Colour colour)
{
    if (colour == TestOptions::Never)
        return false;
    const bool isShown = TestColour::performEnable();
    const char* const refusal = OsEnv::getVariable("NO_COLOR");
    const bool isRefused = refusal != nullptr && *refusal != '\0';
    return colour == TestOptions::Always || (isShown && !isRefused);
}

} // namespace

TestRunner::TestRunner(const TestOptions& options)
    : _options(options)
{
}

bool TestRunner::run(const Tests& tests)
{
    addReports();
    for (const auto& report : _reports)
        report->begin(getPlan(tests));
    const auto begin = std::chrono::steady_clock::now();
    for (unsigned round = 0; round < _options.repeat && !_totals.isStopped; ++round)
        runRound(tests, round);
    _totals.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    for (const auto& report : _reports)
        report->end(_totals);
    return _totals.failed.empty();
}

void TestRunner::addReports()
{
    if (_options.isTap)
        _reports.push_back(std::make_unique<TestTapReport>(std::cout));
    else
        _reports.push_back(
            std::make_unique<TestPeopleReport>(std::cout, isColoured(_options.colour)));
    if (!_options.junit.isEmpty())
        _reports.push_back(std::make_unique<TestJunitReport>(_options.junit));
}

TestPlan TestRunner::getPlan(const Tests& tests) const
{
    TestPlan plan;
    plan.tests = tests.size() * _options.repeat;
    plan.rounds = _options.repeat;
    if (_options.isShuffled)
        plan.seed = _options.seed;
    return plan;
}

void TestRunner::runRound(const Tests& tests, unsigned round)
{
    std::vector<Tests> groups = TestSelection::toGroups(tests);
    if (_options.isShuffled)
        TestSelection::shuffle(groups, _options.seed + round);
    for (auto group = groups.begin(); group != groups.end() && !_totals.isStopped; ++group)
        runGroup(*group);
}

void TestRunner::runGroup(const Tests& tests)
{
    if (!_options.isIsolated)
    {
        for (auto test = tests.begin(); test != tests.end() && take(perform(**test)); ++test)
            ;
        return;
    }
    TestIsolation(_options.limit)
        .perform(
            tests, [this](const TestResult& result) { return take(result); },
            [this](const std::string& text)
            {
                for (const auto& report : _reports)
                    report->takeOutput(text);
            });
}

void TestRunner::serve() const
{
    TestIsolation::serve(
        _options.results, [this](const TestCase& test) { return perform(test); },
        _options.stopsAtFailure);
}

TestResult TestRunner::perform(const TestCase& test) const
{
    TestPerformer performer;
    performer.setMessagesShown(TestSettings::getInstance().areMessagesShown);
    performer.setLeaksFail(_options.leaks == TestOptions::Failing);
    TestResult result = performer.perform(test);
    if (_options.leaks == TestOptions::Ignored)
        result.leak = {};
    return result;
}

/// Returns whether to go on.
bool TestRunner::take(const TestResult& result)
{
    for (const auto& report : _reports)
        report->take(result);
    _totals.checks += result.checks;
    _totals.leaking += result.leak.isAny();
    switch (result.state)
    {
    case TestResult::Passed:
        ++_totals.passed;
        break;
    case TestResult::Skipped:
        ++_totals.skipped;
        break;
    case TestResult::Failed:
        _totals.failed.push_back(result.getFullName());
        _totals.isStopped = _options.stopsAtFailure;
    }
    return !_totals.isStopped;
}

} // namespace Kr
