#pragma once

/// @file
/// Internal to the library: the queue that a thread's statements go into, found in the fastest way
/// that the system has. Null at first.

namespace Kr
{

class LgQueue;

namespace LgThreadSlot
{

LgQueue* get() noexcept;
void set(LgQueue* queue) noexcept;

} // namespace LgThreadSlot
} // namespace Kr
