#pragma once

/// @file
/// What a run of tests is asked for.

#include <base/osFilePath.h>

#include <cstdint>
#include <iosfwd>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace Kr
{

struct TestOptions
{
    enum Leaks
    {
        Ignored,
        Reported,
        Failing
    };

    enum Colour
    {
        Automatic,
        Always,
        Never
    };

    std::vector<std::string> patterns;
    std::vector<std::string> exclusions;
    bool doesList = false;
    bool isIsolated = false;
    bool stopsAtFailure = false;
    bool isTap = false;
    bool isShuffled = false;
    std::uint32_t seed = 0;
    unsigned repeat = 1;
    double limit = std::numeric_limits<double>::infinity(); ///< seconds for an isolated process
    Leaks leaks = Reported;
    Colour colour = Automatic;
    OsFilePath junit; ///< empty: none
    /// Where an isolated process puts its results; empty: this is none.
    OsFilePath results;

    /// @param words the command line without the program's name
    /// Raises `TestEx::ExUnknownOption`, `TestEx::ExBadValue`, and what reading a file does.
    static TestOptions parse(const std::vector<std::string>& words);

    /// Writes what options there are.
    static void printHelp(std::ostream& os);

    /// A file that the user names: a relative path begins at the tests' directory.
    static OsFilePath locate(const std::string& name);
};

} // namespace Kr
