#pragma once

/// @file
/// What a handle points to on a POSIX host.

#include <platform/platform.h>

/// The base of files, events and whatever else a `HANDLE` stands for. Closing the handle deletes
/// the object, as soon as nobody waits on it.
class KrHandleObject
{
public:
    KrHandleObject() noexcept;
    KrHandleObject(const KrHandleObject&) = delete;
    KrHandleObject& operator=(const KrHandleObject&) = delete;
    virtual ~KrHandleObject();

    /// Lets the handle go: deletes the object, or has whoever still uses it do so.
    virtual void close() noexcept;

    /// The host's descriptor of what may become a child's stream; -1 if it has none.
    virtual int getDescriptor() const noexcept { return -1; }

    /// How many there are.
    static DWORD getCount() noexcept;
};

/// The descriptors below are the standard streams.
constexpr int krFirstPrivate = 3;

/// A descriptor in the place of this one, which must not stay where a standard stream was that the
/// program has closed: it would be taken for the stream. -1 with errno set, also for -1.
int krKeepPrivate(int descriptor) noexcept;

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
