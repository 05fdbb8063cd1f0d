#pragma once

/// @file
/// `Kr::List<T>`: the standard list under the library's own name.
/// @code
/// Kr::List<std::string> names{"camera", "light"};
/// names.push_front("scene");
/// @endcode

#include <list>
#include <memory>

namespace Kr
{

/// The standard list itself, so that the two names can be mixed freely.
template <class T, class Allocator = std::allocator<T>>
using List = std::list<T, Allocator>;

} // namespace Kr
