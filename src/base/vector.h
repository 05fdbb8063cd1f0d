#pragma once

/// @file
/// `Kr::Vector<T>`: the standard vector under the library's own name.
/// @code
/// Kr::Vector<int> widths{640, 1280};
/// widths.push_back(1920);
/// @endcode

#include <vector>

namespace Kr
{

/// A thin wrapper of `std::vector`: everything it offers, nothing added.
template <class T>
class Vector : public std::vector<T>
{
public:
    using std::vector<T>::vector;
};

} // namespace Kr
