#include <platform/logFile.h>

#include <platform/posix/path.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <mutex>
#include <new>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <pwd.h>
#include <stdio_ext.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

namespace
{

template <class Call>
auto finish(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

bool fail(DWORD code)
{
    SetLastError(code);
    return false;
}

/// The result of a host call, with the last error set if it failed.
bool succeeded(int result)
{
    return result == 0 || fail(krErrorFromErrno(errno));
}

int descriptorOf(std::intptr_t handle)
{
    return static_cast<int>(handle);
}

/// Keeps the signals of a failing write from the thread: a log that cannot be written is no reason
/// to end the program.
class QuietWrite
{
public:
    QuietWrite() noexcept
    {
        sigset_t pending;
        ::sigpending(&pending);
        ::sigemptyset(&_signals);
        for (const int signal : {SIGPIPE, SIGXFSZ})
            if (::sigismember(&pending, signal) == 0)
                ::sigaddset(&_signals, signal);
        ::pthread_sigmask(SIG_BLOCK, &_signals, &_before);
    }

    QuietWrite(const QuietWrite&) = delete;
    QuietWrite& operator=(const QuietWrite&) = delete;

    ~QuietWrite() { ::pthread_sigmask(SIG_SETMASK, &_before, nullptr); }

    /// After a failure.
    void discard() noexcept
    {
        const timespec now = {0, 0};
        while (::sigtimedwait(&_signals, nullptr, &now) > 0)
            continue;
    }

private:
    sigset_t _signals;
    sigset_t _before;
};

bool waitForRoom(int descriptor, unsigned milliseconds)
{
    pollfd stream = {descriptor, POLLOUT, 0};
    const int count = finish([&] { return ::poll(&stream, 1, static_cast<int>(milliseconds)); });
    return count > 0;
}

/// Writes as much as the file or stream takes without making the caller wait for longer than that
/// at a time. A stream that may block is given no more than a pipe with any room takes at once.
std::size_t writeAll(int descriptor, bool mayBlock, const char* text, std::size_t size,
                     unsigned milliseconds)
{
    constexpr std::size_t atOnce = 4096;
    std::size_t written = 0;
    while (written < size)
    {
        if (mayBlock && !waitForRoom(descriptor, milliseconds))
        {
            SetLastError(krErrorNobodyReads);
            break;
        }
        const std::size_t rest = size - written;
        const ssize_t count =
            ::write(descriptor, text + written, mayBlock ? std::min(rest, atOnce) : rest);
        if (count > 0)
            written += static_cast<std::size_t>(count);
        else if (count < 0 && errno == EAGAIN)
            mayBlock = true;
        else if (count == 0 || errno != EINTR)
        {
            const DWORD code = count == 0 ? ERROR_IO_DEVICE : krErrorFromErrno(errno);
            SetLastError(count < 0 && errno == EPIPE ? krErrorNobodyReads : code);
            break;
        }
    }
    return written;
}

/// Whether somebody else serves the file: so it is unless the file system is known as one on a disk
/// or in memory.
bool isServed(int descriptor)
{
    // ext2 to 4, XFS, Btrfs, F2FS, ZFS, bcachefs, Reiser, JFS, NILFS, UDF, FAT, exFAT, NTFS, tmpfs,
    // ramfs, in this order.
    constexpr std::array<std::uint32_t, 15> onDisk = {
        0xEF53, 0x58465342, 0x9123683E, 0xF2F52010, 0x2FC12FC1, 0xCA451A4E, 0x52654973, 0x3153464A,
        0x3434, 0x15013346, 0x4D44,     0x2011BAB0, 0x7366746E, 0x01021994, 0x858458F6};
    constexpr std::uint32_t overlay = 0x794C7630; // of such ones, as a rule
    struct statfs system = {};
    if (::fstatfs(descriptor, &system) != 0)
        return true;
    const auto kind = static_cast<std::uint32_t>(system.f_type);
    return kind != overlay && std::find(onDisk.begin(), onDisk.end(), kind) == onDisk.end();
}

bool isRegular(int descriptor)
{
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// Opens the host's file, or returns -1 with the last error set. Nothing waits here: a named pipe
/// that nobody reads is refused.
int openHostFile(const char* path, int flags, mode_t mode, struct stat& status)
{
    flags |= O_CLOEXEC | O_NOCTTY | O_NOFOLLOW | O_NONBLOCK;
    int descriptor = finish([&] { return ::open(path, flags | O_RDWR | O_CREAT, mode); });
    int known = descriptor >= 0 ? ::fstat(descriptor, &status) : -1;
    if (known == 0 && S_ISFIFO(status.st_mode)) // open for reading, too, it would never be refused
    {
        ::close(descriptor);
        descriptor = finish([&] { return ::open(path, flags | O_WRONLY); });
        known = descriptor >= 0 ? ::fstat(descriptor, &status) : -1;
    }
    if (known == 0)
        return descriptor;
    if (errno == ELOOP)
        SetLastError(krErrorIsLink);
    else if (errno == ENXIO)
        SetLastError(krErrorNobodyReads);
    else
        krSetPathError(path);
    if (descriptor >= 0)
        ::close(descriptor);
    return -1;
}

/// Whether another user may have put the file where it is: one of his own, or by a second name a
/// private one of this user.
/// @param path is cut down to the folder's
bool isPrepared(std::string& path, const struct stat& status)
{
    const std::size_t end = path.rfind('/');
    path.resize(end == std::string::npos ? 0 : std::max<std::size_t>(end, 1));
    struct stat folder = {};
    if (::stat(path.empty() ? "." : path.c_str(), &folder) != 0)
        return false;
    const uid_t user = ::geteuid();
    const bool isForeign = folder.st_uid != user && folder.st_uid != 0;
    const bool isOpen = isForeign || (folder.st_mode & S_IWOTH) != 0;
    return isOpen && S_ISREG(status.st_mode) && (status.st_uid != user || status.st_nlink > 1);
}

bool isSameFile(const struct stat& a, const struct stat& b)
{
    return a.st_ino == b.st_ino && a.st_dev == b.st_dev;
}

/// Whether the descriptor's file is the one that its path names.
bool isNamed(int descriptor, const char* hostPath)
{
    struct stat own = {};
    struct stat named = {};
    return ::fstat(descriptor, &own) == 0 && ::lstat(hostPath, &named) == 0 &&
           isSameFile(own, named);
}

} // namespace

bool KrLogFile::open(const char* path, bool appends, bool) noexcept
{
    close();
    std::string storage;
    const char* hostPath = krHostPath(path, storage);
    if (hostPath == nullptr)
        return false;
    struct stat status = {};
    const int descriptor = openHostFile(hostPath, appends ? O_APPEND : 0, 0640, status);
    if (descriptor < 0)
        return false;
    if (isPrepared(storage, status))
    {
        ::close(descriptor);
        return fail(krErrorIsPrepared);
    }
    _handle = descriptor;
    _isStream = !S_ISREG(status.st_mode);
    _isFar = !_isStream && isServed(descriptor);
    return true;
}

void KrLogFile::close() noexcept
{
    if (isOpen())
        ::close(descriptorOf(_handle));
    _handle = none;
}

bool KrLogFile::isAt(const char* path) const noexcept
{
    std::string storage;
    const char* hostPath = krHostPath(path, storage);
    return hostPath != nullptr && isNamed(descriptorOf(_handle), hostPath);
}

bool KrLogFile::isRemoved() const noexcept
{
    struct stat status = {};
    return ::fstat(descriptorOf(_handle), &status) == 0 && status.st_nlink == 0;
}

std::int64_t KrLogFile::getSize() const noexcept
{
    struct stat status = {};
    if (::fstat(descriptorOf(_handle), &status) == 0)
        return status.st_size;
    SetLastError(krErrorFromErrno(errno));
    return -1;
}

std::size_t KrLogFile::append(const char* text, std::size_t size, unsigned milliseconds) noexcept
{
    QuietWrite quiet;
    const std::size_t written =
        writeAll(descriptorOf(_handle), _isStream, text, size, milliseconds);
    if (written < size)
        quiet.discard();
    return written;
}

bool KrLogFile::write(std::int64_t at, const char* text, std::size_t size) noexcept
{
    return ::lseek(descriptorOf(_handle), at, SEEK_SET) >= 0 ? append(text, size, 0) == size
                                                             : fail(krErrorFromErrno(errno));
}

bool KrLogFile::read(std::int64_t at, char* buffer, std::size_t size) const noexcept
{
    return finish([&] { return ::pread(descriptorOf(_handle), buffer, size, at); }) ==
           static_cast<ssize_t>(size);
}

bool KrLogFile::cut(std::int64_t size) noexcept
{
    return succeeded(finish([&] { return ::ftruncate(descriptorOf(_handle), size); }));
}

bool KrLogFile::sync() noexcept
{
    // A pipe or a terminal has no buffers.
    return ::fsync(descriptorOf(_handle)) == 0 || errno == EINVAL || fail(krErrorFromErrno(errno));
}

/// The locks whose files are open. The lock itself belongs to the open file, which a forked process
/// shares: it lets go of it at once, so that the lock is its parent's alone.
struct KrOpenLocks
{
    static KrOpenLocks& get()
    {
        static KrOpenLocks& instance = *new KrOpenLocks; // locks may go when the process ends
        return instance;
    }

    /// A call on a lock's file that does not come back, in a file system that is out of reach, does
    /// not keep the process from forking: what it opens is not open yet.
    static void beforeFork()
    {
        bool isLocked = get().mutex.try_lock();
        for (int waited = 0; !isLocked && waited < forkPatience; ++waited)
        {
            Sleep(1);
            isLocked = get().mutex.try_lock();
        }
        get().isLocked = isLocked;
    }

    static void inParent()
    {
        if (get().isLocked)
            get().mutex.unlock();
    }

    static void inChild()
    {
        for (KrFileLock* lock = get().first; lock != nullptr; lock = lock->_next)
        {
            ::close(descriptorOf(lock->_handle));
            lock->_handle = KrFileLock::none;
        }
        get().first = nullptr;
        if (get().isLocked)
            get().mutex.unlock();
        else
            ::new (&get().mutex) std::mutex;
    }

    void add(KrFileLock* lock)
    {
        lock->_next = first;
        first = lock;
    }

    void remove(const KrFileLock* lock)
    {
        KrFileLock** link = &first;
        while (*link != nullptr && *link != lock)
            link = &(*link)->_next;
        if (*link != nullptr)
            *link = lock->_next;
    }

    static constexpr int forkPatience = 1000; // milliseconds

    std::mutex mutex;
    bool isLocked = false; ///< by the thread that forks
    KrFileLock* first = nullptr;
};

namespace
{

// Before any other is asked for: so this is locked last before a fork, when the log has been
// written.
const int watchesForks =
    ::pthread_atfork(KrOpenLocks::beforeFork, KrOpenLocks::inParent, KrOpenLocks::inChild);

} // namespace

KrFileLock::KrFileLock(const std::string& path)
    : _path(path)
{
}

KrFileLock::~KrFileLock()
{
    close();
}

KrFileLock::Outcome KrFileLock::tryAcquire() noexcept
{
    constexpr int maxAttempts = 3; // whoever removes the file makes it anew for the next one
    std::string storage;
    const char* hostPath = krHostPath(_path.c_str(), storage);
    for (int attempt = 0; hostPath != nullptr && attempt < maxAttempts; ++attempt)
    {
        const Outcome opened = openFile();
        if (opened != Outcome::held)
            return opened;
        struct flock range = {};
        range.l_type = F_WRLCK;
        range.l_whence = SEEK_SET;
        if (finish([&] { return ::fcntl(descriptorOf(_handle), F_OFD_SETLK, &range); }) != 0)
            return errno == EAGAIN || errno == EACCES ? Outcome::busy : Outcome::impossible;
        if (isNamed(descriptorOf(_handle), hostPath))
            return Outcome::held;
        close();
    }
    return Outcome::impossible;
}

/// Also where the file is open already.
KrFileLock::Outcome KrFileLock::openFile() noexcept
{
    if (_handle != none)
        return Outcome::held;
    const std::lock_guard<std::mutex> guard(KrOpenLocks::get().mutex);
    std::string storage;
    struct stat status = {};
    const char* hostPath = krHostPath(_path.c_str(), storage);
    const int descriptor = hostPath != nullptr ? openHostFile(hostPath, 0, 0600, status) : -1;
    if (descriptor < 0)
        return Outcome::impossible;
    if (!S_ISREG(status.st_mode))
    {
        ::close(descriptor);
        return Outcome::impossible;
    }
    _handle = descriptor;
    KrOpenLocks::get().add(this);
    return Outcome::held;
}

void KrFileLock::release() noexcept
{
    struct flock range = {};
    range.l_type = F_UNLCK;
    range.l_whence = SEEK_SET;
    static_cast<void>(::fcntl(descriptorOf(_handle), F_OFD_SETLK, &range));
}

void KrFileLock::remove() noexcept
{
    std::string storage;
    const char* hostPath = krHostPath(_path.c_str(), storage);
    if (hostPath != nullptr && _handle != none)
        ::unlink(hostPath);
    close();
}

void KrFileLock::close() noexcept
{
    const std::lock_guard<std::mutex> guard(KrOpenLocks::get().mutex);
    if (_handle == none)
        return;
    KrOpenLocks::get().remove(this);
    ::close(descriptorOf(_handle));
    _handle = none;
}

bool krLogExists(const char* path) noexcept
{
    std::string storage;
    struct stat status = {};
    const char* hostPath = krHostPath(path, storage);
    return hostPath != nullptr && (::lstat(hostPath, &status) == 0 || errno != ENOENT);
}

bool krMoveLog(const char* from, const char* to) noexcept
{
    std::string fromStorage;
    std::string toStorage;
    const char* source = krHostPath(from, fromStorage);
    const char* target = krHostPath(to, toStorage);
    return source != nullptr && target != nullptr && succeeded(::rename(source, target));
}

bool krMakeLogFolder(const char* path, bool isPrivate) noexcept
{
    std::string storage;
    const char* hostPath = krHostPath(path, storage);
    if (hostPath == nullptr)
        return false;
    return ::mkdir(hostPath, isPrivate ? 0700 : 0755) == 0 || errno == EEXIST ||
           fail(krErrorFromErrno(errno));
}

bool krIsPrivateFolder(const char* path) noexcept
{
    std::string storage;
    const char* hostPath = krHostPath(path, storage);
    struct stat status = {};
    if (hostPath == nullptr || !succeeded(::lstat(hostPath, &status)))
        return false;
    const bool isOwn = S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
    return (isOwn && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0) || fail(krErrorIsOpen);
}

bool krSyncLogFolder(const char* path) noexcept
{
    std::string storage;
    const char* hostPath = krHostPath(path, storage);
    if (hostPath == nullptr)
        return false;
    const int descriptor =
        finish([&] { return ::open(hostPath, O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    if (descriptor < 0)
        return fail(krErrorFromErrno(errno));
    const bool isDone = ::fsync(descriptor) == 0 || errno == EINVAL;
    const int error = errno;
    ::close(descriptor);
    return isDone || fail(krErrorFromErrno(error));
}

std::size_t krWriteStandard(std::FILE* stream, const char* text, std::size_t size,
                            unsigned milliseconds) noexcept
{
    unsigned waited = 0;
    for (; ::ftrylockfile(stream) != 0; ++waited)
    {
        if (waited >= milliseconds)
        {
            SetLastError(krErrorNobodyReads);
            return 0;
        }
        Sleep(1);
    }
    const int descriptor = ::fileno(stream);
    const bool isFile = isRegular(descriptor);
    std::size_t written = 0;
    if (isFile || ::__fpending(stream) == 0 || waitForRoom(descriptor, milliseconds))
    {
        std::fflush(stream);
        written = writeAll(descriptor, !isFile, text, size, milliseconds);
    }
    else
        SetLastError(krErrorNobodyReads);
    ::funlockfile(stream);
    return written;
}

bool krIsFarStandard(std::FILE* stream) noexcept
{
    const int descriptor = ::fileno(stream);
    return isRegular(descriptor) && isServed(descriptor);
}

/// Threads go with their process here.
bool krIsLastThread() noexcept
{
    return false;
}

void krKeepLibrary() noexcept
{
    static const char here = 0;
    Dl_info self = {};
    if (::dladdr(&here, &self) != 0)
        ::dlopen(self.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

std::string krUserName()
{
    const uid_t user = ::geteuid();
    char buffer[4096];
    passwd entry = {};
    passwd* found = nullptr;
    if (::getpwuid_r(user, &entry, buffer, sizeof buffer, &found) == 0 && found != nullptr)
        return found->pw_name;
    return std::to_string(user);
}
