#pragma once

/// @file
/// Internal to the library: the program that logs.

#include <string>

namespace Kr
{
namespace LgProgram
{

/// The name of its file, without folder and ".exe".
std::string getName();

} // namespace LgProgram
} // namespace Kr
