#include <platform/posix/handle.h>

#include <cerrno>
#include <cstring>
#include <mutex>
#include <new>
#include <unordered_map>

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

namespace
{

class Mapping : public KrHandleObject
{
public:
    explicit Mapping(int descriptor)
        : _descriptor(descriptor)
    {
    }

    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    ~Mapping() override { ::close(_descriptor); }

    const int _descriptor;
};

/// The sizes of all views, by where they begin. Never destroyed: views may outlive static objects.
struct Views
{
    std::mutex mutex;
    std::unordered_map<void*, std::size_t> sizes;
};

Views& views()
{
    static Views& instance = *new Views;
    return instance;
}

void beforeFork() noexcept
{
    views().mutex.lock();
}

void inParent() noexcept
{
    views().mutex.unlock();
}

/// Puts a copy in the view's place.
void makePrivate(void* address, std::size_t size) noexcept
{
    void* const copy =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (copy == MAP_FAILED) // NOLINT: the system's constant
        return;
    std::memcpy(copy, address, size);
    static_cast<void>(::mremap(copy, size, size, MREMAP_MAYMOVE | MREMAP_FIXED, address));
}

void inChild() noexcept
{
    for (const auto& [address, size] : views().sizes)
        makePrivate(address, size);
    views().mutex.unlock();
}

const int separatesChild = ::pthread_atfork(beforeFork, inParent, inChild);

DWORD outcome(int error)
{
    if (error == 0)
        return 1;
    SetLastError(krErrorFromErrno(error));
    return 0;
}

/// Has the file at least that size, with room on the disk for all of it.
int extend(int descriptor, off_t size)
{
    const off_t before = ::lseek(descriptor, 0, SEEK_END);
    if (before < 0)
        return errno;
    int error = 0;
    do
        error = before < size ? ::posix_fallocate(descriptor, before, size - before) : 0;
    while (error == EINTR);
    return error;
}

} // namespace

HANDLE CreateFileMappingA(HANDLE file, SECURITY_ATTRIBUTES*, DWORD, DWORD sizeHigh, DWORD sizeLow,
                          const char*) noexcept
{
    const auto* const object = krObject<KrHandleObject>(file);
    if (object == nullptr)
        return nullptr;
    const int descriptor = object->getDescriptor();
    const auto size = static_cast<off_t>((std::uint64_t{sizeHigh} << 32) | sizeLow);
    if (outcome(extend(descriptor, size)) == 0)
        return nullptr;
    const int own = ::fcntl(descriptor, F_DUPFD_CLOEXEC, krFirstPrivate);
    if (own < 0)
    {
        SetLastError(krErrorFromErrno(errno));
        return nullptr;
    }
    auto* const mapping = new (std::nothrow) Mapping(own);
    if (mapping == nullptr)
        ::close(own);
    const HANDLE handle = KrHandleObject::open(mapping);
    return handle != INVALID_HANDLE_VALUE ? handle : nullptr;
}

void* MapViewOfFile(HANDLE handle, DWORD, DWORD offsetHigh, DWORD offsetLow,
                    std::size_t size) noexcept
{
    const auto* const mapping = krObject<Mapping>(handle);
    if (mapping == nullptr)
        return nullptr;
    const auto offset = static_cast<off_t>((std::uint64_t{offsetHigh} << 32) | offsetLow);
    const std::lock_guard<std::mutex> lock(views().mutex);
    void* const address =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, mapping->_descriptor, offset);
    if (address == MAP_FAILED) // NOLINT: the system's constant
    {
        SetLastError(krErrorFromErrno(errno));
        return nullptr;
    }
    try
    {
        views().sizes.emplace(address, size);
        return address;
    }
    catch (const std::bad_alloc&)
    {
        ::munmap(address, size);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
}

BOOL UnmapViewOfFile(const void* address) noexcept
{
    const std::lock_guard<std::mutex> lock(views().mutex);
    const auto view = views().sizes.find(const_cast<void*>(address));
    if (view == views().sizes.end())
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    ::munmap(view->first, view->second);
    views().sizes.erase(view);
    return 1;
}
