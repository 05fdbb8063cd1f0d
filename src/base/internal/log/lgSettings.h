#pragma once

/// @file
/// Internal to the library: what the logger's settings say about its output; docs/log-files.md
/// lists them.

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
    /// The text of a setting under the name of its environment variable, null if it is not given.
    using Lookup = const char* (*)(const char* name);

    /// Reads all settings. A bad value is reported in a line on `report` and skipped. Paths are
    /// made absolute, and in one spelling.
    static LgSettings read(Lookup lookup, std::ostream& report);

    /// The log directory, for a file in it that must be the user's alone; otherwise empty.
    std::string getPrivateFolder(const std::string& path) const;

    std::string directory;                                       ///< absolute
    std::array<LgDestination, LgTypes::NUM_LEVELS> destinations; ///< by level
    std::string timelinePath;                                    ///< empty: no timeline
    std::uint64_t maxFileSize = 0;                               ///< in bytes; 0: no limit
    int keptFiles = 1;
    bool isDirectoryPrivate = false; ///< it is the default one, where others may write beside it
    bool hasTimeStamps = true;
    bool isJson = false;
    bool isBlocking = false;
    bool survivesKill = false; ///< what waits in the queues lies in a file
    bool isLockedBetweenProcesses = true;
};

} // namespace Kr
