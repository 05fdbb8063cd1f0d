#include <platform/posix/handle.h>

#include <atomic>
#include <cerrno>
#include <cstdint>

#include <fcntl.h>
#include <unistd.h>

namespace
{

std::atomic<DWORD> handleCount{0};

// The objects by the numbers of their handles, which are multiples of 4 from 4 on. A number is used
// again as late as possible, so that a stale handle is found out.
constexpr std::size_t slotCount = 65536;
constexpr std::uintptr_t step = 4;
std::atomic<KrHandleObject*> slots[slotCount];
std::atomic<std::size_t> nextSlot{0};

} // namespace

KrHandleObject::KrHandleObject() noexcept
{
    handleCount.fetch_add(1, std::memory_order_relaxed);
}

KrHandleObject::~KrHandleObject()
{
    handleCount.fetch_sub(1, std::memory_order_relaxed);
}

void KrHandleObject::close() noexcept
{
    delete this;
}

HANDLE KrHandleObject::open(KrHandleObject* object) noexcept
{
    for (std::size_t attempt = 0; object != nullptr && attempt < slotCount; ++attempt)
    {
        const std::size_t index = nextSlot.fetch_add(1, std::memory_order_relaxed) % slotCount;
        KrHandleObject* none = nullptr;
        if (slots[index].compare_exchange_strong(none, object))
            return reinterpret_cast<HANDLE>((index + 1) * step); // NOLINT: a number
    }
    SetLastError(object == nullptr ? ERROR_NOT_ENOUGH_MEMORY : ERROR_TOO_MANY_OPEN_FILES);
    delete object;
    return INVALID_HANDLE_VALUE;
}

std::atomic<KrHandleObject*>* KrHandleObject::findSlot(HANDLE handle) noexcept
{
    const auto number = reinterpret_cast<std::uintptr_t>(handle);
    const bool isNumber = number != 0 && number % step == 0 && number / step <= slotCount;
    return isNumber ? &slots[number / step - 1] : nullptr;
}

KrHandleObject* KrHandleObject::find(HANDLE handle) noexcept
{
    const auto* const slot = findSlot(handle);
    return slot != nullptr ? slot->load(std::memory_order_acquire) : nullptr;
}

KrHandleObject* KrHandleObject::take(HANDLE handle) noexcept
{
    auto* const slot = findSlot(handle);
    return slot != nullptr ? slot->exchange(nullptr) : nullptr;
}

DWORD KrHandleObject::getCount() noexcept
{
    return handleCount.load(std::memory_order_relaxed);
}

int krKeepPrivate(int descriptor) noexcept
{
    if (descriptor < 0 || descriptor >= krFirstPrivate)
        return descriptor;
    const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, krFirstPrivate);
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return moved;
}

BOOL CloseHandle(HANDLE handle) noexcept
{
    KrHandleObject* const object = KrHandleObject::take(handle);
    if (object == nullptr)
        SetLastError(ERROR_INVALID_HANDLE);
    else
        object->close();
    return object != nullptr;
}
