#pragma once

/// @file
/// Texts in UTF-8 and in UTF-16 on a POSIX host.

#include <string>
#include <string_view>

/// Appends the text in the other form; false, with a part of it appended, where it is malformed:
/// an overlong or incomplete sequence, a surrogate without its other half.
bool krWiden(std::string_view text, std::u16string& wide);
bool krNarrow(std::u16string_view wide, std::string& text);
