#pragma once

/// @file
/// Whether the standard output shows colours.

namespace Kr
{

class TestColour
{
public:
    static bool performEnable() noexcept; // testColourWindows
};

} // namespace Kr
