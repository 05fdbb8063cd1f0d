#pragma once

/// @file
/// Internal to the library: which file a log is, and how long.

#include <base/internal/log/lgRingFormat.h>

#include <string>

namespace Kr
{
namespace LgLogMark
{

/// All 0 if there is no such file.
LgRingFormat::FileMark find(const std::string& path) noexcept;

inline bool isSameFile(const LgRingFormat::FileMark& a, const LgRingFormat::FileMark& b)
{
    return a.volume == b.volume && a.index == b.index;
}

} // namespace LgLogMark
} // namespace Kr
