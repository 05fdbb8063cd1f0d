#pragma once

/// @file
/// What a handle stands for on a POSIX host.

#include <platform/platform.h>

#include <atomic>
#include <cstddef>

/// The base of files, events and whatever else a `HANDLE` stands for. Closing the handle deletes
/// the object, as soon as nobody waits on it. A handle is a small number, as on the system, and
/// not an address: one that is stale or made up is told from those that are open.
class KrHandleObject
{
public:
    KrHandleObject() noexcept;
    KrHandleObject(const KrHandleObject&) = delete;
    KrHandleObject& operator=(const KrHandleObject&) = delete;
    virtual ~KrHandleObject();

    /// Lets the handle go: deletes the object, or has whoever still uses it do so.
    virtual void close() noexcept;

    /// A handle for a new object, which belongs to it from now on. INVALID_HANDLE_VALUE, with the
    /// last error set, for null, which stands for a lack of memory, and when there are too many.
    static HANDLE open(KrHandleObject* object) noexcept;

    /// The object of a handle, or null.
    static KrHandleObject* find(HANDLE handle) noexcept;
    /// The same, and nobody finds it again.
    static KrHandleObject* take(HANDLE handle) noexcept;

    /// The host's descriptor of what may become a child's stream; -1 if it has none.
    virtual int getDescriptor() const noexcept { return -1; }

    /// How many there are.
    static DWORD getCount() noexcept;

private:
    static std::atomic<KrHandleObject*>* findSlot(HANDLE handle) noexcept;
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
    auto* const object = dynamic_cast<Object*>(KrHandleObject::find(handle));
    if (object == nullptr)
        SetLastError(ERROR_INVALID_HANDLE);
    return object;
}
