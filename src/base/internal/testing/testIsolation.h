#pragma once

/// @file
/// Tests in processes of their own, which may crash, hang or leave early.

#include <base/internal/testing/testSelection.h>
#include <base/osFilePath.h>
#include <base/osProcess.h>
#include <base/testResult.h>

#include <functional>
#include <string>
#include <vector>

namespace Kr
{

class TestIsolation
{
public:
    using Tests = TestSelection::Tests;
    /// Returns whether to go on.
    using ResultSink = std::function<bool(const TestResult& result)>;
    using Performer = std::function<TestResult(const TestCase& test)>;
    using OutputSink = std::function<void(const std::string& text)>;

    /// @param seconds for a process, which is ended after that
    explicit TestIsolation(double seconds);

    /// Runs the tests in one process; in another those behind one that has ended its process.
    void perform(const Tests& tests, const ResultSink& takeResult, const OutputSink& takeOutput);

    /// The other side, in such a process: performs the tests whose names are on the standard input,
    /// and puts the results into the file.
    static void serve(const OsFilePath& path, const Performer& perform, bool stopsAtFailure);

private:
    struct Run
    {
        std::vector<TestResult> results;
        OsProcess::Result process;
        double seconds = 0.; ///< of the process
    };

    Run start(const Tests& tests) const;
    void takeEnd(const Tests& tests, Run& run) const;
    std::string describeEnd(const Run& run) const;

    const double _seconds;
};

} // namespace Kr
