#pragma once

/// @file
/// Names that Windows compares in any case of their letters.

#include <algorithm>
#include <string_view>

/// Whether the names are the same but for the case of the letters A to Z.
inline bool krIsSameName(std::string_view left, std::string_view right)
{
    const auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return fold(a) == fold(b); });
}
