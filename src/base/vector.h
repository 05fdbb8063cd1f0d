#pragma once

/// @file
/// `Kr::Vector<T>`: the standard vector under the library's own name.

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
