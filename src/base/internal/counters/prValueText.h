#pragma once

/// @file
/// Internal to the library: how the value of a performance counter is written.

#include <string>

namespace Kr
{

/// A whole number to the last digit, another to three decimals, whatever the locale.
std::string formatCounterValue(double value);

} // namespace Kr
