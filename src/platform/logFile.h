#pragma once

/// @file
/// The calls for files that a log is written to.
///
/// A log is written in folders that others can reach, and read while it is written. So these calls
/// never follow a link at the end of a path, never wait without an end, and take no part in the
/// rules and locks of ordinary files, by which whoever only reads could stop the writer. Failures
/// leave the last error set.

#include <platform/platform.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

// What the calls say beyond the system's own reasons; that bit is kept free for applications.
constexpr DWORD krErrorIsLink = 0x20000001;     ///< a link stands there
constexpr DWORD krErrorIsPrepared = 0x20000002; ///< another user has put the file there
constexpr DWORD krErrorIsOpen = 0x20000003;     ///< the folder is not its user's alone
constexpr DWORD krErrorNobodyReads = 0x20000004;

/// An open file, or a stream: a named pipe, a terminal, a device.
class KrLogFile
{
public:
    KrLogFile() = default;
    KrLogFile(const KrLogFile&) = delete;
    KrLogFile& operator=(const KrLogFile&) = delete;
    ~KrLogFile() { close(); }

    /// Opens the file, or makes it, for its owner and, to read, for its group. Refuses a link, and
    /// in a folder that others may write to what is another user's or has a second name.
    /// @param appends every write goes to the end, wherever that is by then
    /// @param isAlone nobody else may open the file to write, where the system can see to that
    bool open(const char* path, bool appends, bool isAlone = false) noexcept;
    void close() noexcept;

    bool isOpen() const noexcept { return _handle != none; }
    bool isStream() const noexcept { return _isStream; }

    /// Whether a call on it may never come back: a file in a file system that another machine or
    /// another process serves, and a stream where the system has no limit for writing.
    bool isFar() const noexcept { return _isFar; }

    /// Whether it is still the one that its path names.
    bool isAt(const char* path) const noexcept;

    /// Whether no path names it any more.
    bool isRemoved() const noexcept;

    /// -1 if it cannot be told.
    std::int64_t getSize() const noexcept;

    /// Writes at the end; a stream waits no longer than `milliseconds` for whoever reads it.
    /// Returns how many bytes were written.
    std::size_t append(const char* text, std::size_t size, unsigned milliseconds) noexcept;

    // For a file that does not append
    bool write(std::int64_t at, const char* text, std::size_t size) noexcept;

    bool read(std::int64_t at, char* buffer, std::size_t size) const noexcept;
    bool cut(std::int64_t size) noexcept;

    /// Returns when everything is on the disk.
    bool sync() noexcept;

private:
    static constexpr std::intptr_t none = -1;

    std::intptr_t _handle = none;
    bool _isStream = false;
    bool _isFar = false;
};

/// A lock between processes: a file of its own, for its owner alone, which is locked. The lock ends
/// with the process that holds it, also where that is killed and has forked children.
class KrFileLock
{
public:
    enum class Outcome
    {
        held,
        busy,
        impossible ///< the file cannot be made, or the file system has no locks
    };

    explicit KrFileLock(const std::string& path);
    KrFileLock(const KrFileLock&) = delete;
    KrFileLock& operator=(const KrFileLock&) = delete;
    ~KrFileLock();

    Outcome tryAcquire() noexcept;
    void release() noexcept;

    /// Gives up the lock, which is held, and its file.
    void remove() noexcept;

private:
    static constexpr std::intptr_t none = -1;

    Outcome openFile() noexcept;
    void close() noexcept;

    friend struct KrOpenLocks;

    const std::string _path;
    std::intptr_t _handle = none;
    KrFileLock* _next = nullptr; ///< in the list of those that a forked process closes
};

/// Whether something stands there; so it is if that cannot be told.
bool krLogExists(const char* path) noexcept;

/// Renames a file, also over one that others have open.
bool krMoveLog(const char* from, const char* to) noexcept;

/// Makes a folder; an existing one is fine.
/// @param isPrivate for its user alone
bool krMakeLogFolder(const char* path, bool isPrivate) noexcept;

/// Whether it is a folder of this process's user that nobody else may write to.
bool krIsPrivateFolder(const char* path) noexcept;

/// Returns when the names of the files in the folder are on the disk.
bool krSyncLogFolder(const char* path) noexcept;

/// Writes to a standard stream behind what its buffer holds, waiting no longer than that at a time.
/// Returns how many bytes were written.
std::size_t krWriteStandard(std::FILE* stream, const char* text, std::size_t size,
                            unsigned milliseconds) noexcept;

/// Whether the process is ending and its other threads are gone: whoever hands them something, or
/// waits for them, waits for ever.
bool krIsLastThread() noexcept;

/// Keeps the library that this is in where it is until the process ends: a thread may be in it that
/// nobody can wait for.
void krKeepLibrary() noexcept;

/// So it is with a standard stream.
bool krIsFarStandard(std::FILE* stream) noexcept;

/// The name of the process's user, or the number if there is no name.
std::string krUserName();
