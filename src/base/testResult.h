#pragma once

/// @file
/// What came of one test.
/// @code
/// const Kr::TestResult result; // as a report gets it
/// for (const Kr::TestFailure& failure : result.failures)
///     std::cerr << failure.file << ':' << failure.line << ": " << failure.text << '\n';
/// @endcode

#include <cstdint>
#include <string>
#include <vector>

namespace Kr
{

/// One thing that went wrong in a test.
struct TestFailure
{
    enum Kind
    {
        Check,     ///< a check did not hold
        Exception, ///< the test let an exception out
        Leak,      ///< it left something behind, where that counts (`--leaks=fail`)
        End        ///< its process ended before the test did
    };

    Kind kind = Check;
    std::string file; ///< of the source; empty if nobody knows
    int line = 0;
    std::string text; ///< one or more lines, without the last one's end
};

/// What a test holds at its end more than at its beginning; less counts as nothing.
struct TestLeak
{
    std::int64_t blocks = 0; ///< of the checked heap (hmCheckedNew.h)
    std::int64_t bytes = 0;
    std::int64_t handles = 0; ///< of the system: files, events, threads, processes

    bool isAny() const noexcept { return blocks > 0 || bytes > 0 || handles > 0; }
};

struct TestResult
{
    enum State
    {
        Passed,
        Failed,
        Skipped
    };

    std::string group;
    std::string name;
    State state = Passed;
    double seconds = 0.;
    std::uint64_t checks = 0; ///< how many were made
    std::vector<TestFailure> failures;
    std::string skipReason;
    TestLeak leak;
    std::vector<std::string> messages; ///< of the log: "Warning Database: no index"

    std::string getFullName() const { return group + '.' + name; }
};

} // namespace Kr
