#pragma once

/// @file
/// How reports put things into words.

#include <base/testResult.h>

#include <string>
#include <string_view>

namespace Kr
{

class TestWords
{
public:
    /// "0.3 ms", "12.40 s"
    static std::string describeTime(double seconds);

    /// "1 test", "2 tests"
    static std::string count(std::uint64_t number, const char* thing);

    /// "2 blocks of 64 bytes, 1 handle"; empty if there is none.
    static std::string describeLeak(const TestLeak& leak);

    /// "src/vectors.cpp:12: text", as compilers write positions; the text alone if there is none.
    static std::string describeFailure(const TestFailure& failure);

    /// Puts the text before each line, and a line's end behind the last.
    static std::string indent(std::string_view text, std::string_view before);
};

} // namespace Kr
