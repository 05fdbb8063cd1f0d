#include <platform/posix/handle.h>

#include <atomic>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace
{

std::atomic<DWORD> handleCount{0};

} // namespace

char krInvalidHandle = 0;

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
    auto* const object = krObject<KrHandleObject>(handle);
    if (object != nullptr)
        object->close();
    return object != nullptr;
}
