#pragma once

/// @file
/// Internal to the library: how many messages of which level, in a record's text.

#include <base/lgTypes.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Kr
{
namespace LgCountsText
{

using Counts = std::array<std::uint32_t, LgTypes::NUM_LEVELS>;

constexpr std::size_t size = 400; ///< holds an introduction of 150 characters

/// Writes the introduction and, unless all are 0, the counts: "lost: 3 Warning, 12 Tracing".
std::string_view write(char (&text)[size], const char* introduction, const Counts& counts);

} // namespace LgCountsText
} // namespace Kr
