#pragma once

/// @file
/// Texts as a terminal or a JSON reader takes them, and the flat JSON objects of a log.

#include <functional>
#include <string>
#include <string_view>

namespace KrLog
{

/// Hands over each member of an object of strings, numbers and literals: strings with their escapes
/// resolved, the others as they stand. False if the text is no such object.
bool readObject(std::string_view text,
                const std::function<void(const std::string& name, const std::string& value)>& take);

/// Appends the text as a JSON string, quotes included. Bytes that are not UTF-8 are taken for
/// Latin-1.
void appendJson(std::string& line, std::string_view text);

/// Appends the text with whatever a terminal may obey, and bytes that are not UTF-8, escaped as in
/// C
/// (`\n`, `\x1b`).
void appendVisible(std::string& line, std::string_view text);

} // namespace KrLog
