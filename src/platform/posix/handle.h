#pragma once

/// @file
/// What a handle points to on a POSIX host.

#include <platform/platform.h>

/// The base of files, events and whatever else a `HANDLE` stands for. Closing the handle deletes
/// the object.
class KrHandleObject
{
public:
    virtual ~KrHandleObject();
};

/// The object of the expected kind, or null with the last error set to the invalid handle.
template <class Object>
Object* krObject(HANDLE handle) noexcept
{
    Object* object = nullptr;
    if (handle != nullptr && handle != INVALID_HANDLE_VALUE)
        object = dynamic_cast<Object*>(static_cast<KrHandleObject*>(handle));
    if (object == nullptr)
        SetLastError(ERROR_INVALID_HANDLE);
    return object;
}
