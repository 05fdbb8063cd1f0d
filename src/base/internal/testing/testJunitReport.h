#pragma once

/// @file
/// The report as a file of JUnit's form, for servers that build and test: what the schemas of Ant
/// and of Jenkins' xUnit plugin have in common. It is written at the end, as a whole.

#include <base/internal/testing/testReport.h>
#include <base/osFilePath.h>
#include <base/osSafeWriter.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace Kr
{

class TestJunitReport : public TestReport
{
public:
    /// Raises `TestEx::ExBadFile` if the file cannot be written, before any test has run.
    explicit TestJunitReport(const OsFilePath& path);

    void begin(const TestPlan& plan) override;
    void take(const TestResult& result) override;
    void takeOutput(const std::string& text) override;
    void end(const TestTotals& totals) override;

private:
    /// The results of a group that came one behind the other.
    struct Suite
    {
        std::vector<TestResult> results;
        std::string output;
        std::chrono::system_clock::time_point begin;
    };

    Suite& getSuite(const std::string& group);
    static std::string writeSuite(const Suite& suite, std::size_t number);

    const std::unique_ptr<OsSafeWriter> _writer;
    std::vector<Suite> _suites;
    std::chrono::system_clock::time_point _newest; ///< when the newest result had come
};

} // namespace Kr
