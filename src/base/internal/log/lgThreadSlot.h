#pragma once

/// @file
/// Internal to the library: one pointer for each thread, found in the fastest way that the system
/// has. Null at first.

namespace Kr
{

struct LgTarget;

namespace LgThreadSlot
{

const LgTarget* get() noexcept;
void set(const LgTarget* target) noexcept;

} // namespace LgThreadSlot
} // namespace Kr
