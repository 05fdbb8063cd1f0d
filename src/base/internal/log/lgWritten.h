#pragma once

/// @file
/// Internal to the library: which of a dead process's messages stand in a log already.

#include <base/internal/log/lgRingFormat.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Kr
{
namespace LgWritten
{

/// A message as its process would have written it.
struct Line
{
    std::uint32_t queue; ///< what a queue holds was written in its order
    std::string text;    ///< with its line feed
};

/// For each line whether it stands in the log, the files that it was rotated into, or the process's
/// own file beside it, behind the mark. The log tells more than its text does: of a queue's lines
/// the first ones are written, and only behind the mark, so two messages that read alike are still
/// two.
std::vector<bool> find(const std::vector<Line>& lines, const std::string& path,
                       const std::string& ownPath, const LgRingFormat::LogMark& mark);

} // namespace LgWritten
} // namespace Kr
