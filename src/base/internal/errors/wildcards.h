#pragma once

/// @file
/// Internal to the library: patterns of names.

#include <string_view>

namespace Kr
{

/// Whether the text has the form of the pattern, in which "*" stands for any text. The case of
/// letters counts.
bool fitsWildcards(std::string_view pattern, std::string_view text);

} // namespace Kr
