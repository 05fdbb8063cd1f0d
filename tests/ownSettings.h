#pragma once

/// @file
/// Reports of settings, less the library's own: every program that links it has those of some
/// packages.

#include <sstream>
#include <string>

/// Leaves out the settings of the library's packages, with the indented lines below them.
inline std::string withoutLibrary(const std::string& report)
{
    std::istringstream lines(report);
    std::string kept;
    bool isOurs = false;
    for (std::string line; std::getline(lines, line);)
    {
        if (line.rfind(' ', 0) != 0)
        {
            isOurs = false;
            for (const std::string package : {"logger", "testing"})
                isOurs = isOurs || line.rfind(package + '.', 0) == 0 ||
                         line == "Settings of package '" + package + "':";
        }
        if (!isOurs)
            kept += line + '\n';
    }
    return kept;
}
