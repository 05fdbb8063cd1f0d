#pragma once

/// @file
/// Internal to the library: which names are most like one that there is not, for the reasons of
/// exceptions.

#include <base/vector.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace Kr
{

/// The text with the small ones of the 26 letters.
std::string toSmallLetters(std::string_view text);

/// How many characters have to be inserted, removed, replaced or exchanged with their neighbours to
/// make one text of the other (optimal string alignment, Damerau 1964).
std::size_t getEditDistance(std::string_view a, std::string_view b);

/// The names that are most like the text, whatever the case of their letters: "'Memory', 'System'",
/// at most three; empty if there are no names. Nearest are those of which the text is a part, or
/// that are a part of it.
std::string quoteNearest(std::string_view text, const Vector<std::string>& names);

} // namespace Kr
