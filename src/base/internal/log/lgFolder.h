#pragma once

/// @file
/// Internal to the library: the folders that log files stand in.

#include <string>

namespace Kr
{
namespace LgFolder
{

/// Makes the folders above the file; false, with the system's last error set, if one cannot be made
/// or is not as it should.
/// @param privateFolder one of them that is for the process's user alone; empty: none
bool makeAbove(const std::string& path, const std::string& privateFolder);

/// The folder that the file stands in.
std::string getFolder(const std::string& path);

/// The name of the process's user.
std::string getUserName();

} // namespace LgFolder
} // namespace Kr
