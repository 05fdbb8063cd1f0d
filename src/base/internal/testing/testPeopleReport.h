#pragma once

/// @file
/// The report for people: a line for each test, what failed below it, a summary.

#include <base/internal/testing/testReport.h>

#include <iosfwd>
#include <string_view>

namespace Kr
{

class TestPeopleReport : public TestReport
{
public:
    TestPeopleReport(std::ostream& os, bool isColoured);

    void begin(const TestPlan& plan) override;
    void take(const TestResult& result) override;
    void takeOutput(const std::string& text) override;
    void end(const TestTotals& totals) override;

private:
    enum class Colour
    {
        Red = 31,
        Green = 32,
        Yellow = 33
    };

    std::string paint(std::string_view text, Colour colour) const;
    void writeDetails(const TestResult& result) const;

    std::ostream& _os;
    const bool _isColoured;
    TestPlan _plan;
    bool _hasFailedSinceOutput = false;
};

} // namespace Kr
