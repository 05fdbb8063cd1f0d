#pragma once

/// @file
/// What the package `testing` knows of the harness's settings.

#include <string>

namespace Kr
{

struct TestSettings
{
    std::string directory;         ///< where tests find and write their files; empty: here
    bool areMessagesShown = false; ///< log messages as they come

    static TestSettings& getInstance();
};

} // namespace Kr
