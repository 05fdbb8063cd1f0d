#pragma once

/// @file
/// The test that is running: what its checks report to, from any thread.

#include <base/testGroup.h>
#include <base/testResult.h>

#include <chrono>
#include <mutex>
#include <string>

namespace Kr
{

class TestRun
{
public:
    explicit TestRun(const TestCase& test);
    TestRun(const TestRun&) = delete;
    TestRun& operator=(const TestRun&) = delete;
    ~TestRun();

    /// The one of the process. Raises `ExInternalError` if there is none.
    static TestRun& getCurrent();

    /// Calls the test, and takes what it lets out.
    void perform();

    void takeCheck(const char* file, int line);
    void takeFailure(TestFailure failure);
    void takeSkip(const std::string& reason);
    void takeMessage(std::string text);

    TestResult getResult();

private:
    void takeException();
    std::string describePlace() const;
    std::string listRaises(int least) const;

    const TestCase& _test;
    const std::chrono::system_clock::time_point _begin;
    std::mutex _mutex;
    TestResult _result;
    const char* _checkFile = nullptr; ///< of the newest check
    int _checkLine = 0;
    std::size_t _droppedMessages = 0;
};

} // namespace Kr
