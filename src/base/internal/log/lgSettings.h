#pragma once

/// @file
/// Internal to the library: what the logger's environment variables say about its output;
/// docs/log-files.md lists them.

#include <base/lgTypes.h>

#include <array>
#include <cstdint>
#include <iosfwd>
#include <string>

namespace Kr
{

struct LgDestination
{
    enum Kind
    {
        none,
        standardOutput,
        standardError,
        file
    };

    Kind kind = file;
    std::string path; ///< of a file, in full
};

struct LgSettings
{
    /// The value of a variable, null if it is not set.
    using Lookup = const char* (*)(const char* name);

    /// Reads all variables. A bad value is reported in a line on `report` and skipped.
    static LgSettings read(Lookup lookup, std::ostream& report);

    std::string directory;
    std::array<LgDestination, LgTypes::NUM_LEVELS> destinations; ///< by level
    std::string timelinePath;                                    ///< empty: no timeline
    std::uint64_t maxFileSize = 0;                               ///< in bytes; 0: no limit
    int keptFiles = 1;
    bool hasTimeStamps = true;
    bool isJson = false;
    bool isBlocking = false;
    bool isLockedBetweenProcesses = true;
};

} // namespace Kr
