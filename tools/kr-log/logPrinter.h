#pragma once

/// @file
/// Records as lines, in the library's two forms.

#include "logRecord.h"

#include <string>

namespace KrLog
{

/// The columns as the library writes them; in colours that tell the level, if wanted. Nothing in it
/// reaches a terminal that the terminal would obey.
std::string toColumns(const Record& record, bool isColoured);

/// One JSON object. A foreign line has a text alone.
std::string toJson(const Record& record);

} // namespace KrLog
