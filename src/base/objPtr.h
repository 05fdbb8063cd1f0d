#pragma once

/// @file
/// Exclusive ownership of one object.
///
/// `ObjPtr<T>` owns an object and deletes it, through its virtual destructor if it has one; there
/// is no reference count. Copying or assigning passes the ownership on and leaves the source null:
/// @code
/// Kr::ObjPtr<Shape> first(new Circle);
/// Kr::ObjPtr<Shape> second(first); // first.isNull() is now true
/// @endcode
/// An owner of a derived class passes on to an owner of its base, if the base has a virtual
/// destructor. `reset` deletes, null or `release` let go, and a condition asks whether it owns:
/// @code
/// Kr::ObjPtr<Shape> shape = Kr::ObjPtr<Circle>(new Circle);
/// if (shape)
///     shape.reset(new Circle);
/// shape = nullptr;
/// @endcode
/// `ObjPtrRet<T>` is what a factory returns: the caller stores it in an `ObjPtr`, or lets it go and
/// the object is deleted. Pitfall: a copy empties its source, so these pointers do not belong in
/// standard containers.

#include <base/internal/errors/ownedPtr.h>

namespace Kr
{

template <class T>
using ObjPtr = OwnedPtr<T, DeleteObject>;

template <class T>
using ObjPtrRet = OwnedPtrRet<T, DeleteObject>;

} // namespace Kr
