#pragma once

/// @file
/// Four values that go through the same operations at once, in the compiler's own vector types:
/// each lane has the bits that one value alone would have.

namespace Kr
{

template <class T>
using Lanes [[gnu::vector_size(4 * sizeof(T))]] = T;

} // namespace Kr
