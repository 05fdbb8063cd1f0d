#pragma once

/// @file
/// Between a list of arguments and the one text that the system starts programs with.
///
/// The rules are those by which the runtime of a Windows program takes its command line apart:
/// blanks separate; quotes hold a text together; backslashes stand for themselves unless a quote
/// follows, before which two stand for one and an odd one makes the quote a character. The first
/// text, the program, knows quotes only.

#include <string>
#include <string_view>
#include <vector>

/// Appends a program's name. It must not hold a quote, as no name may.
void krAppendProgram(std::string& line, std::string_view program);

/// Appends a blank and one argument, in quotes if there is anything in it that somebody might read
/// as more than a character: runtimes expand wildcards that are not in quotes.
void krAppendArgument(std::string& line, std::string_view argument);

std::vector<std::string> krSplitCommandLine(const char* line);
