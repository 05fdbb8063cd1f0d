#pragma once

/// @file
/// What the command line asks for.

#include "logFilter.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace KrLog
{

/// What is wrong with the command line.
struct UsageError : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

struct Arguments
{
    enum Command
    {
        show,
        summary,
        recover,
        help,
        version
    };

    /// Raises `UsageError`.
    static Arguments read(int argc, char** argv);

    static const char* getHelp();

    Command command = show;
    Filter filter;
    bool isFollowing = false;
    bool isJson = false;
    bool isColoured = false;
    bool withRotated = true;
    std::vector<std::string> files; ///< for `recover` the folder
};

} // namespace KrLog
