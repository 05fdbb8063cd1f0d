#pragma once

/// @file
/// Performs one test, and takes what the checks of it report. `TestMgr` runs tests with it, and the
/// macros of testCheck.h are the way to its checks.
/// @code
/// for (const Kr::TestCase* test : Kr::TestCase::getAll())
///     if (Kr::TestPerformer().perform(*test).state == Kr::TestResult::Failed)
///         std::cerr << test->getFullName() << " has failed\n";
/// @endcode
/// Whatever leaves a test as an exception is a failure, of any type; it says what was raised and
/// where, and lists what else was raised since the test began. The messages that are logged
/// meanwhile are kept, if the logger is up.
///
/// What a test leaves behind is the difference of what the process holds before and after. What is
/// made once and kept, as a table that the first user builds, counts for the test that needs it
/// first; and what other threads take meanwhile counts, too.
///
/// Pitfall: one test at a time in a process.

#include <base/krBaseApi.h>
#include <base/testGroup.h>
#include <base/testResult.h>

#include <string>

namespace Kr
{

class KR_BASE_API TestPerformer
{
public:
    /// What happens behind a check that does not hold.
    enum Mode
    {
        GoOn,
        EndTest
    };

    TestPerformer();

    /// Whether messages of the log are shown on standard error, too, as they come. Returns the
    /// previous value, at first false.
    bool setMessagesShown(bool on) noexcept;

    /// Whether a test that leaves something behind has failed. Returns the previous value, at first
    /// false.
    bool setLeaksFail(bool on) noexcept;

    /// Runs the test. Raises `ExInternalError` if there is one running.
    TestResult perform(const TestCase& test);

    // What tests report. Raises `ExInternalError` if none is running. Any thread may call it.

    /// Returns whether the condition holds.
    /// @param text the check as it is written
    /// @param values of what it compares; empty if there are none
    /// @param file, line the position of the check
    static bool check(Mode mode, bool holds, const char* text, const std::string& values,
                      const char* file, int line);
    static bool check(Mode mode, bool holds, const std::string& text, const std::string& values,
                      const char* file, int line);

    /// The same for two numbers that may differ by the tolerance.
    static bool checkNear(Mode mode, double left, double right, double tolerance, const char* text,
                          const char* file, int line);

    /// Ends the test as skipped.
    [[noreturn]] static void skip(const std::string& reason);

    /// The exception that is being handled, in words: type, position and reason, as far as they are
    /// known. Empty if there is none.
    static std::string describeException();

private:
    bool _areMessagesShown = false;
    bool _doLeaksFail = false;
};

} // namespace Kr
