#pragma once

/// @file
/// Internal to the library: saves the log when the program ends by `std::terminate`.

namespace Kr
{
namespace LgTermination
{

/// Puts itself before the handler that is there.
void install();

/// To be called when the logger stops: the library may be unloaded after that.
void remove();

} // namespace LgTermination
} // namespace Kr
