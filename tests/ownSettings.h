#pragma once

/// @file
/// Reports of settings, less the library's own: every program that links it has the logger's.

#include <sstream>
#include <string>

/// Leaves out the settings of the package `logger`, with the indented lines below them.
inline std::string withoutLogger(const std::string& report)
{
    std::istringstream lines(report);
    std::string kept;
    bool isLogger = false;
    for (std::string line; std::getline(lines, line);)
    {
        if (line.rfind(' ', 0) != 0)
            isLogger = line.rfind("logger.", 0) == 0 || line == "Settings of package 'logger':";
        if (!isLogger)
            kept += line + '\n';
    }
    return kept;
}
