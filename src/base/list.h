#pragma once

/// @file
/// `Kr::List<T>`: the standard list under the library's own name.
/// @code
/// Kr::List<std::string> names{"camera", "light"};
/// names.push_front("scene");
/// @endcode

#include <list>

namespace Kr
{

/// A thin wrapper of `std::list`: everything it offers, nothing added.
template <class T>
class List : public std::list<T>
{
public:
    using std::list<T>::list;
};

} // namespace Kr
