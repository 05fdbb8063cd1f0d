#pragma once

/// @file
/// Internal to the library: the files in which queues outlive their process, from the side of the
/// process that owns one, and of the one that finds it.
///
/// The owner holds a lock that ends with the process. It lies on a handle that is used for nothing
/// else: a forked process closes it, and what that has inherited of the file's memory does not hold
/// it. So whoever gets the lock knows that the owner is dead.

#include <base/internal/log/lgRingFormat.h>
#include <base/internal/log/lgSettings.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Kr
{

/// A file of this process, in memory a chunk at a time.
class LgRingFile
{
public:
    /// Makes a file in the log directory, with that. If that fails, gives the reason and null, or
    /// an object without chunks that has still to remove the file.
    static std::unique_ptr<LgRingFile> create(const LgSettings& settings, std::string& problem);

    LgRingFile(const LgRingFile&) = delete;
    LgRingFile& operator=(const LgRingFile&) = delete;

    /// Nothing may use its chunks any more. Removes the file.
    ~LgRingFile();

    /// The next chunk, of zeros, for as long as the object lives; null if there is no room. May be
    /// called by any thread.
    void* addChunk() noexcept;

    /// Removes the file, but not its chunks; where the system does not let an open file go, that is
    /// left to the end.
    void removeName() noexcept;

    /// In a forked process: the file stays the parent's.
    void abandon() noexcept;

private:
    LgRingFile() = default;

    bool make(const LgSettings& settings);
    bool open(std::string path) noexcept;
    void close() noexcept;

    std::string _path;      ///< empty: removed, or the parent's
    void* _owner = nullptr; ///< the handle that bears the lock
    void* _file = nullptr;  ///< the one that the memory belongs to
    std::mutex _mutex;
    std::vector<void*> _chunks;
};

/// A file that a dead process has left. While the object lives, nobody else gets it.
class LgFoundRings
{
public:
    /// Null if it is no such file, its owner is alive, or somebody else has found it.
    static std::unique_ptr<LgFoundRings> open(const std::string& path);

    LgFoundRings(const LgFoundRings&) = delete;
    LgFoundRings& operator=(const LgFoundRings&) = delete;
    ~LgFoundRings();

    /// Reads the next chunk; false at the end.
    bool readChunk(unsigned char (&chunk)[LgRingFormat::chunkSize]) noexcept;

    /// Removes the file; false if the system refuses.
    bool remove() noexcept;

private:
    LgFoundRings(const std::string& path, void* file)
        : _path(path)
        , _file(file)
    {
    }

    const std::string _path;
    void* const _file;
};

} // namespace Kr
