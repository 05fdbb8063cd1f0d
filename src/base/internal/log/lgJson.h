#pragma once

/// @file
/// Internal to the library: texts as JSON strings.

#include <string>
#include <string_view>

namespace Kr
{
namespace LgJson
{

/// Appends the text as a JSON string, quotes included. Bytes that are not UTF-8 are taken for
/// Latin-1.
void appendString(std::string& line, std::string_view text);

} // namespace LgJson
} // namespace Kr
