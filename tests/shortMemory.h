#pragma once

/// @file
/// Allocations that fail when a test wants them to: the program's `operator new` is replaced.

namespace ShortMemory
{

/// From now on: lets the n-th allocation fail, counted from 1, or all from that on.
void begin(long n, bool forGood);

/// There is memory again. Returns whether an allocation has failed since `begin`.
bool end();

} // namespace ShortMemory
