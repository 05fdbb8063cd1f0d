#pragma once

/// @file
/// Results as they go from an isolated process of tests to the one that has started it: lines of
/// fields, so that what a crash leaves is readable up to its last complete line.

#include <base/testResult.h>

#include <string>
#include <string_view>
#include <vector>

namespace Kr
{

class TestRecord
{
public:
    static std::string write(const TestResult& result);

    /// The results that are complete.
    static std::vector<TestResult> read(std::string_view text);
};

} // namespace Kr
