#pragma once

/// @file
/// `Kr::Vector<T>`: the standard vector under the library's own name.
/// @code
/// Kr::Vector<int> widths{640, 1280};
/// widths.push_back(1920);
/// @endcode

#include <memory>
#include <vector>

namespace Kr
{

/// The standard vector itself, so that the two names can be mixed freely.
template <class T, class Allocator = std::allocator<T>>
using Vector = std::vector<T, Allocator>;

} // namespace Kr
