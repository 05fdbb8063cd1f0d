#include <platform/posix/fileQuery.h>
#include <platform/posix/handle.h>
#include <platform/posix/path.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

// Share modes are kept as record locks on bytes far behind any file's end. For each kind of access
// there is a byte that its users hold shared and a byte that those who deny it hold shared; whether
// anybody holds a byte is asked by testing for an exclusive lock. Open-file-description locks
// serve, because they belong to the handle: they work alike inside a process and between processes,
// and end with the handle, even of a killed process. A whole-file advisory lock makes testing and
// taking one step.

namespace
{

/// What the host call returns in the end: it is made again as long as signals interrupt it.
template <class Call>
auto finish(Call call) noexcept
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

constexpr off_t lockableEnd = off_t{1} << 62;

enum Sharing : off_t
{
    usesRead = lockableEnd,
    usesWrite,
    deniesRead,
    deniesWrite,
    deniesDelete
};

class File : public KrHandleObject
{
public:
    File(int descriptor, bool isReadable)
        : _descriptor(descriptor)
        , _isReadable(isReadable)
    {
    }

    File(const File&) = delete;
    File& operator=(const File&) = delete;

    ~File() override
    {
        if (!_pathToRemove.empty())
            ::unlink(_pathToRemove.c_str());
        ::close(_descriptor);
    }

    int getDescriptor() const noexcept override { return _descriptor; }

    const int _descriptor;
    const bool _isReadable;    ///< the host's descriptor may read also where the handle may not
    std::string _pathToRemove; ///< when the handle is closed, while it still denies the file to all
};

struct Access
{
    bool read;
    bool write;
    bool append; ///< every write goes to the end
};

Access decodeAccess(DWORD access)
{
    const bool write = (access & GENERIC_WRITE) != 0;
    return {(access & GENERIC_READ) != 0, write, !write && (access & FILE_APPEND_DATA) != 0};
}

struct flock rangeLock(int type, off_t start, off_t length)
{
    struct flock lock = {};
    lock.l_type = static_cast<short>(type);
    lock.l_whence = SEEK_SET;
    lock.l_start = start;
    lock.l_len = length;
    return lock;
}

bool isHeld(int descriptor, off_t byte)
{
    struct flock lock = rangeLock(F_WRLCK, byte, 1);
    return ::fcntl(descriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

void hold(int descriptor, off_t byte)
{
    // A descriptor that cannot read cannot share the mark, but be the one that has it.
    for (const int type : {F_RDLCK, F_WRLCK})
    {
        struct flock lock = rangeLock(type, byte, 1);
        if (finish([&] { return ::fcntl(descriptor, F_OFD_SETLK, &lock); }) == 0)
            break;
    }
}

/// Makes testing and taking of the sharing marks one step among all who open the file.
class SharingGate
{
public:
    explicit SharingGate(int descriptor)
        : _descriptor(descriptor)
    {
        finish([&] { return ::flock(_descriptor, LOCK_EX); });
    }

    SharingGate(const SharingGate&) = delete;
    SharingGate& operator=(const SharingGate&) = delete;

    ~SharingGate() { ::flock(_descriptor, LOCK_UN); }

private:
    const int _descriptor;
};

struct SharingRule
{
    bool uses;
    bool denies;
    off_t usesByte;
    off_t deniesByte;
};

/// Takes part in the file's sharing, or returns false if another handle denies the access or has
/// one that this denies.
bool share(int descriptor, const Access& access, DWORD shareMode)
{
    const SharingRule rules[] = {
        {access.read, (shareMode & FILE_SHARE_READ) == 0, usesRead, deniesRead},
        {access.write || access.append, (shareMode & FILE_SHARE_WRITE) == 0, usesWrite,
         deniesWrite},
    };
    const SharingGate gate(descriptor);
    for (const SharingRule& rule : rules)
        if ((rule.uses && isHeld(descriptor, rule.deniesByte)) ||
            (rule.denies && isHeld(descriptor, rule.usesByte)))
            return false;
    for (const SharingRule& rule : rules)
    {
        if (rule.uses)
            hold(descriptor, rule.usesByte);
        if (rule.denies)
            hold(descriptor, rule.deniesByte);
    }
    if ((shareMode & FILE_SHARE_DELETE) == 0)
        hold(descriptor, deniesDelete);
    return true;
}

int openFlags(const Access& access, DWORD disposition)
{
    int flags = O_CLOEXEC | O_NOCTTY;
    if (!access.read && !access.write && !access.append && disposition == OPEN_EXISTING)
        return flags | O_PATH; // needs no permission, and waits for nobody at a pipe
    if (access.write || access.append)
        flags |= O_RDWR; // also for writing only: the sharing marks need it
    if (access.append)
        flags |= O_APPEND;
    if (disposition == CREATE_NEW || disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS)
        flags |= O_CREAT;
    if (disposition == CREATE_NEW)
        flags |= O_EXCL;
    return flags;
}

/// The host ends a process that writes beyond a limit on the size of files, unless it takes the
/// signal: then the write fails as on a full disk. A handler, since the programs that this one
/// starts would inherit that the signal is ignored. A program's own choice is left alone.
void outliveSizeLimit()
{
    static const bool isDone = []
    {
        struct sigaction action = {};
        const bool isDefault =
            ::sigaction(SIGXFSZ, nullptr, &action) == 0 && action.sa_handler == SIG_DFL;
        action.sa_handler = [](int) {};
        action.sa_flags = SA_RESTART;
        return !isDefault || ::sigaction(SIGXFSZ, &action, nullptr) == 0;
    }();
    static_cast<void>(isDone);
}

/// Opens the host's file, or returns -1 with the last error set.
/// @param existed whether the file was there before
int openHostFile(const char* path, const Access& access, DWORD disposition, DWORD attributes,
                 bool& existed)
{
    struct stat status = {};
    existed = ::stat(path, &status) == 0;
    const bool writes = access.write || access.append;
    if (existed && (S_ISDIR(status.st_mode) || (writes && (status.st_mode & 0222) == 0)))
    {
        SetLastError(disposition == CREATE_NEW ? ERROR_FILE_EXISTS : ERROR_ACCESS_DENIED);
        return -1;
    }
    if (writes)
        outliveSizeLimit();
    const mode_t mode = (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? 0444 : 0666;
    const int flags = openFlags(access, disposition);
    int descriptor = finish([&] { return ::open(path, flags, mode); });
    if (descriptor < 0 && errno == EACCES && writes && !access.read) // for writing alone, perhaps
        descriptor = finish([&] { return ::open(path, (flags & ~O_RDWR) | O_WRONLY, mode); });
    if (descriptor < 0 && errno == EEXIST)
        SetLastError(ERROR_FILE_EXISTS);
    else if (descriptor < 0)
        krSetPathError(path);
    return descriptor;
}

off_t wide(DWORD low, DWORD high)
{
    return static_cast<off_t>((std::uint64_t{high} << 32) | low);
}

DWORD lowPart(std::uint64_t value)
{
    return static_cast<DWORD>(value);
}

DWORD highPart(std::uint64_t value)
{
    return static_cast<DWORD>(value >> 32);
}

/// The result of a host call, with the last error set if it failed.
BOOL outcome(int result)
{
    if (result != 0)
        SetLastError(krErrorFromErrno(errno));
    return result == 0;
}

BOOL refuse(DWORD code)
{
    SetLastError(code);
    return 0;
}

BOOL setRange(HANDLE handle, int type, bool wait, off_t start, off_t length)
{
    const File* file = krObject<File>(handle);
    if (file == nullptr)
        return 0;
    if (start < 0 || length <= 0 || length > lockableEnd - start)
        return refuse(ERROR_INVALID_PARAMETER);
    struct flock lock = rangeLock(type, start, length);
    const int command = wait ? F_OFD_SETLKW : F_OFD_SETLK;
    const int result = finish([&] { return ::fcntl(file->_descriptor, command, &lock); });
    if (result != 0 && (errno == EAGAIN || errno == EACCES))
        return refuse(ERROR_LOCK_VIOLATION);
    return outcome(result);
}

bool isRemoved(int descriptor)
{
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && status.st_nlink == 0;
}

enum class Use
{
    none,
    shared, ///< by handles that let the file be renamed and removed
    denied,
    unknown ///< with the last error set
};

/// How the file at that path is in use.
Use getUse(const char* path)
{
    int descriptor = -1;
    for (const int access : {O_RDONLY, O_WRONLY})
        if (descriptor < 0)
            descriptor = finish([&] { return ::open(path, access | O_CLOEXEC | O_NONBLOCK); });
    const bool cannotAsk = errno == EMFILE || errno == ENFILE || errno == ENOMEM;
    if (descriptor < 0 && cannotAsk)
        SetLastError(krErrorFromErrno(errno));
    if (descriptor < 0)
        return cannotAsk ? Use::unknown : Use::none;
    const File file(descriptor, true);
    if (isHeld(descriptor, deniesDelete))
        return Use::denied;
    for (const off_t byte : {usesRead, usesWrite})
        if (isHeld(descriptor, byte))
            return Use::shared;
    return Use::none;
}

/// Whether the file at that path may be removed or renamed, or else the last error is set.
bool mayGo(const char* path)
{
    const Use use = getUse(path);
    if (use == Use::denied)
        SetLastError(ERROR_SHARING_VIOLATION);
    return use == Use::none || use == Use::shared;
}

/// Whether another file may take its place.
bool mayBeReplaced(const char* path)
{
    const Use use = getUse(path);
    if (use == Use::denied || use == Use::shared)
        SetLastError(ERROR_ACCESS_DENIED);
    return use == Use::none;
}

/// Makes room for the bytes from `size` to `end`. On a failure the file is as it was.
/// @return -1 if the disk has no room, else 0: a file system that cannot tell gives none in advance
int allocate(int descriptor, off_t size, off_t end)
{
    if (finish([&] { return ::fallocate(descriptor, 0, size, end - size); }) == 0)
        return 0;
    const int error = errno;
    if (error != ENOSPC && error != EDQUOT && error != EFBIG)
        return 0;
    finish([&] { return ::ftruncate(descriptor, size); });
    errno = error;
    return -1;
}

} // namespace

HANDLE CreateFileA(const char* path, DWORD accessMask, DWORD shareMode, SECURITY_ATTRIBUTES*,
                   DWORD disposition, DWORD flagsAndAttributes, HANDLE) noexcept
{
    std::string storage;
    const char* hostPath = krHostPath(path, storage);
    if (hostPath == nullptr)
        return INVALID_HANDLE_VALUE;
    const Access access = decodeAccess(accessMask);
    const bool knownDisposition = disposition >= CREATE_NEW && disposition <= OPEN_ALWAYS;
    if (!knownDisposition)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    bool existed = false;
    const int descriptor = openHostFile(hostPath, access, disposition, flagsAndAttributes, existed);
    if (descriptor < 0)
        return INVALID_HANDLE_VALUE;
    std::unique_ptr<File> file(new (std::nothrow) File(descriptor, access.read));
    if (file == nullptr)
    {
        ::close(descriptor);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return INVALID_HANDLE_VALUE;
    }
    if (accessMask != 0 && !share(descriptor, access, shareMode))
    {
        SetLastError(ERROR_SHARING_VIOLATION);
        return INVALID_HANDLE_VALUE;
    }
    if (!existed && isRemoved(descriptor)) // by somebody who deletes it on closing
        return CreateFileA(path, accessMask, shareMode, nullptr, disposition, flagsAndAttributes,
                           nullptr);
    const bool always = disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS;
    if (existed && disposition == CREATE_ALWAYS)
        finish([&] { return ::ftruncate(descriptor, 0); });
    if ((flagsAndAttributes & FILE_FLAG_DELETE_ON_CLOSE) != 0)
        file->_pathToRemove = std::move(storage);
    const HANDLE handle = KrHandleObject::open(file.release());
    if (handle != INVALID_HANDLE_VALUE)
        SetLastError(existed && always ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return handle;
}

BOOL ReadFile(HANDLE handle, void* buffer, DWORD size, DWORD* read, OVERLAPPED*) noexcept
{
    *read = 0;
    const File* file = krObject<File>(handle);
    if (file == nullptr)
        return 0;
    if (!file->_isReadable)
        return refuse(ERROR_ACCESS_DENIED);
    constexpr ssize_t largest = 0x7FFFF000; // that the host reads at once
    ssize_t count = largest;
    while (*read < size && count == largest)
    {
        char* const rest = static_cast<char*>(buffer) + *read;
        count = finish([&] { return ::read(file->_descriptor, rest, size - *read); });
        if (count < 0)
            return refuse(krErrorFromErrno(errno));
        *read += static_cast<DWORD>(count);
    }
    return 1;
}

BOOL WriteFile(HANDLE handle, const void* data, DWORD size, DWORD* written, OVERLAPPED*) noexcept
{
    *written = 0;
    const File* file = krObject<File>(handle);
    if (file == nullptr)
        return 0;
    while (*written < size)
    {
        const ssize_t count =
            ::write(file->_descriptor, static_cast<const char*>(data) + *written, size - *written);
        if (count >= 0)
            *written += static_cast<DWORD>(count);
        else if (errno != EINTR)
            return refuse(errno == EBADF ? ERROR_ACCESS_DENIED : krErrorFromErrno(errno));
    }
    return 1;
}

BOOL SetFilePointerEx(HANDLE handle, LARGE_INTEGER distance, LARGE_INTEGER* position,
                      DWORD method) noexcept
{
    const File* file = krObject<File>(handle);
    if (file == nullptr)
        return 0;
    constexpr int origins[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (method > FILE_END)
        return refuse(ERROR_INVALID_PARAMETER);
    const off_t moved = ::lseek(file->_descriptor, distance.QuadPart, origins[method]);
    if (moved < 0)
        return refuse(errno == EINVAL ? ERROR_NEGATIVE_SEEK : krErrorFromErrno(errno));
    if (position != nullptr)
        position->QuadPart = moved;
    return 1;
}

DWORD SetFilePointer(HANDLE handle, LONG distance, LONG* distanceHigh, DWORD method) noexcept
{
    LARGE_INTEGER from = {};
    LARGE_INTEGER to = {};
    from.QuadPart =
        distanceHigh == nullptr
            ? distance
            : static_cast<std::int64_t>(
                  (static_cast<std::uint64_t>(static_cast<std::uint32_t>(*distanceHigh)) << 32) |
                  static_cast<std::uint32_t>(distance));
    if (SetFilePointerEx(handle, from, &to, method) == 0)
        return INVALID_SET_FILE_POINTER;
    const auto position = static_cast<std::uint64_t>(to.QuadPart);
    if (distanceHigh != nullptr)
        *distanceHigh = static_cast<LONG>(highPart(position));
    if (lowPart(position) == INVALID_SET_FILE_POINTER)
        SetLastError(ERROR_SUCCESS);
    return lowPart(position);
}

BOOL SetEndOfFile(HANDLE handle) noexcept
{
    const File* file = krObject<File>(handle);
    if (file == nullptr)
        return 0;
    const int descriptor = file->_descriptor;
    const off_t end = ::lseek(descriptor, 0, SEEK_CUR);
    struct stat status = {};
    if (!outcome(::fstat(descriptor, &status)) ||
        (end > status.st_size && !outcome(allocate(descriptor, status.st_size, end))))
        return 0;
    const int result = finish([&] { return ::ftruncate(descriptor, end); });
    return result != 0 && errno == EINVAL ? refuse(ERROR_ACCESS_DENIED) : outcome(result);
}

BOOL GetFileSizeEx(HANDLE handle, LARGE_INTEGER* size) noexcept
{
    const File* file = krObject<File>(handle);
    struct stat status = {};
    if (file == nullptr || !outcome(::fstat(file->_descriptor, &status)))
        return 0;
    size->QuadPart = status.st_size;
    return 1;
}

DWORD GetFileSize(HANDLE handle, DWORD* sizeHigh) noexcept
{
    LARGE_INTEGER size = {};
    if (GetFileSizeEx(handle, &size) == 0)
        return INVALID_FILE_SIZE;
    const auto bytes = static_cast<std::uint64_t>(size.QuadPart);
    if (sizeHigh != nullptr)
        *sizeHigh = highPart(bytes);
    if (lowPart(bytes) == INVALID_FILE_SIZE)
        SetLastError(ERROR_SUCCESS);
    return lowPart(bytes);
}

BOOL GetFileTime(HANDLE handle, FILETIME* creation, FILETIME* lastAccess,
                 FILETIME* lastWrite) noexcept
{
    const File* file = krObject<File>(handle);
    struct stat status = {};
    if (file == nullptr || !outcome(::fstat(file->_descriptor, &status)))
        return 0;
    if (creation != nullptr)
        *creation = krFileTime(status.st_ctim);
    if (lastAccess != nullptr)
        *lastAccess = krFileTime(status.st_atim);
    if (lastWrite != nullptr)
        *lastWrite = krFileTime(status.st_mtim);
    return 1;
}

BOOL SetFileTime(HANDLE handle, const FILETIME*, const FILETIME* lastAccess,
                 const FILETIME* lastWrite) noexcept
{
    const File* file = krObject<File>(handle);
    if (file == nullptr)
        return 0;
    timespec times[2] = {{0, UTIME_OMIT}, {0, UTIME_OMIT}};
    if (lastAccess != nullptr)
        times[0] = krTimespec(*lastAccess);
    if (lastWrite != nullptr)
        times[1] = krTimespec(*lastWrite);
    return outcome(::futimens(file->_descriptor, times));
}

DWORD GetFileType(HANDLE handle) noexcept
{
    const File* file = krObject<File>(handle);
    struct stat status = {};
    if (file == nullptr || !outcome(::fstat(file->_descriptor, &status)))
        return FILE_TYPE_UNKNOWN;
    return S_ISREG(status.st_mode)   ? FILE_TYPE_DISK
           : S_ISCHR(status.st_mode) ? FILE_TYPE_CHAR
                                     : FILE_TYPE_PIPE;
}

BOOL FlushFileBuffers(HANDLE handle) noexcept
{
    const File* file = krObject<File>(handle);
    if (file == nullptr)
        return 0;
    if (finish([&] { return ::fsync(file->_descriptor); }) == 0 ||
        errno == EINVAL) // a pipe or terminal has no buffers
        return 1;
    return refuse(krErrorFromErrno(errno));
}

BOOL GetFileInformationByHandle(HANDLE handle, BY_HANDLE_FILE_INFORMATION* information) noexcept
{
    const File* file = krObject<File>(handle);
    struct stat status = {};
    if (file == nullptr || !outcome(::fstat(file->_descriptor, &status)))
        return 0;
    const auto size = static_cast<std::uint64_t>(status.st_size);
    information->dwFileAttributes = krAttributes(status);
    information->ftCreationTime = krFileTime(status.st_ctim);
    information->ftLastAccessTime = krFileTime(status.st_atim);
    information->ftLastWriteTime = krFileTime(status.st_mtim);
    information->dwVolumeSerialNumber = lowPart(status.st_dev);
    information->nFileSizeHigh = highPart(size);
    information->nFileSizeLow = lowPart(size);
    information->nNumberOfLinks = static_cast<DWORD>(status.st_nlink);
    information->nFileIndexHigh = highPart(status.st_ino);
    information->nFileIndexLow = lowPart(status.st_ino);
    return 1;
}

BOOL LockFileEx(HANDLE handle, DWORD flags, DWORD, DWORD sizeLow, DWORD sizeHigh,
                OVERLAPPED* range) noexcept
{
    return setRange(handle, (flags & LOCKFILE_EXCLUSIVE_LOCK) != 0 ? F_WRLCK : F_RDLCK,
                    (flags & LOCKFILE_FAIL_IMMEDIATELY) == 0,
                    wide(range->Offset, range->OffsetHigh), wide(sizeLow, sizeHigh));
}

BOOL UnlockFileEx(HANDLE handle, DWORD, DWORD sizeLow, DWORD sizeHigh, OVERLAPPED* range) noexcept
{
    return setRange(handle, F_UNLCK, false, wide(range->Offset, range->OffsetHigh),
                    wide(sizeLow, sizeHigh));
}

BOOL MoveFileExA(const char* from, const char* to, DWORD flags) noexcept
{
    std::string fromStorage;
    std::string toStorage;
    const char* source = krHostPath(from, fromStorage);
    const char* target = krHostPath(to, toStorage);
    if (source == nullptr || target == nullptr)
        return 0;
    struct stat status = {};
    if (::lstat(source, &status) != 0)
    {
        krSetPathError(source);
        return 0;
    }
    if (!mayGo(source))
        return 0;
    struct stat targetStatus = {};
    if (::lstat(target, &targetStatus) == 0)
    {
        const bool same =
            targetStatus.st_ino == status.st_ino && targetStatus.st_dev == status.st_dev;
        if (!same && (flags & MOVEFILE_REPLACE_EXISTING) == 0)
            return refuse(ERROR_ALREADY_EXISTS);
        if (!same && S_ISDIR(targetStatus.st_mode))
            return refuse(ERROR_ACCESS_DENIED);
        if (!same && !mayBeReplaced(target))
            return 0;
    }
    if (::rename(source, target) == 0)
        return 1;
    krSetPathError(target);
    if (GetLastError() == ERROR_FILE_NOT_FOUND)
        SetLastError(ERROR_PATH_NOT_FOUND);
    return 0;
}

BOOL CreateDirectoryA(const char* path, SECURITY_ATTRIBUTES*) noexcept
{
    std::string storage;
    const char* hostPath = krHostPath(path, storage);
    if (hostPath == nullptr)
        return 0;
    if (::mkdir(hostPath, 0777) == 0)
        return 1;
    krSetPathError(hostPath);
    return 0;
}

BOOL DeleteFileA(const char* path) noexcept
{
    std::string storage;
    const char* hostPath = krHostPath(path, storage);
    if (hostPath == nullptr)
        return 0;
    const DWORD attributes = krPathAttributes(hostPath, nullptr);
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return 0;
    if ((attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0)
        return refuse(ERROR_ACCESS_DENIED);
    if (!mayGo(hostPath))
        return 0;
    if (::unlink(hostPath) == 0)
        return 1;
    krSetPathError(hostPath);
    return 0;
}
