#pragma once

/// @file
/// Who is told how a run of tests goes.

#include <base/testResult.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Kr
{

struct TestPlan
{
    std::size_t tests = 0; ///< of all rounds together
    unsigned rounds = 1;
    std::optional<std::uint32_t> seed; ///< of the first round; those that follow have the next ones
};

struct TestTotals
{
    std::size_t passed = 0;
    std::size_t skipped = 0;
    std::size_t leaking = 0;
    std::uint64_t checks = 0;
    double seconds = 0.;
    bool isStopped = false;          ///< at the first failure
    std::vector<std::string> failed; ///< their names
};

class TestReport
{
public:
    TestReport() = default;
    TestReport(const TestReport&) = delete;
    TestReport& operator=(const TestReport&) = delete;
    virtual ~TestReport() = default;

    virtual void begin(const TestPlan& plan) = 0;
    virtual void take(const TestResult& result) = 0;
    /// What a process of tests has written on its standard streams; behind its results.
    virtual void takeOutput(const std::string& text) = 0;
    virtual void end(const TestTotals& totals) = 0;
};

} // namespace Kr
