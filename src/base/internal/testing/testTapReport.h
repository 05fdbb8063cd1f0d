#pragma once

/// @file
/// The report in the form of the Test Anything Protocol, version 14, for harnesses that read it.

#include <base/internal/testing/testReport.h>

#include <iosfwd>

namespace Kr
{

class TestTapReport : public TestReport
{
public:
    explicit TestTapReport(std::ostream& os);

    void begin(const TestPlan& plan) override;
    void take(const TestResult& result) override;
    void takeOutput(const std::string& text) override;
    void end(const TestTotals& totals) override;

private:
    void writeDetails(const TestResult& result) const;

    std::ostream& _os;
    std::size_t _number = 0;
};

} // namespace Kr
