#pragma once

/// @file
/// The operating system's errors, as texts.

#include <cstddef>

namespace Kr
{

/// Writes the system's message for a code, less at most two trailing line-break characters;
/// "Unknown system error %lu." when the system has none. What does not fit is cut.
void formatSystemError(unsigned long code, char* text, std::size_t size) noexcept;

} // namespace Kr
