#pragma once

/// @file
/// Runs tests as options say, and tells the reports.

#include <base/internal/testing/testOptions.h>
#include <base/internal/testing/testReport.h>
#include <base/internal/testing/testSelection.h>

#include <memory>
#include <vector>

namespace Kr
{

class TestRunner
{
public:
    using Tests = TestSelection::Tests;

    explicit TestRunner(const TestOptions& options);

    /// Returns whether nothing has failed.
    bool run(const Tests& tests);

    /// Performs the tests that another process of this program names.
    void serve() const;

private:
    void addReports();
    TestPlan getPlan(const Tests& tests) const;
    void runRound(const Tests& tests, unsigned round);
    void runGroup(const Tests& tests);
    TestResult perform(const TestCase& test) const;
    bool take(const TestResult& result);

    const TestOptions& _options;
    std::vector<std::unique_ptr<TestReport>> _reports;
    TestTotals _totals;
};

} // namespace Kr
