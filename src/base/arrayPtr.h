#pragma once

/// @file
/// Exclusive ownership of an array made with `new T[n]`.
///
/// `ArrayPtr<T>` and `ArrayPtrRet<T>` behave as `ObjPtr` and `ObjPtrRet` do, with elements in place
/// of members; an array of a derived class does not pass for an array of its base:
/// @code
/// Kr::ArrayPtr<int> histogram(new int[256]());
/// ++histogram[17];
/// @endcode

#include <base/internal/errors/ownedPtr.h>

namespace Kr
{

template <class T>
using ArrayPtr = OwnedPtr<T, DeleteArray>;

template <class T>
using ArrayPtrRet = OwnedPtrRet<T, DeleteArray>;

} // namespace Kr
