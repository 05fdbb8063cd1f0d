#pragma once

/// @file
/// Internal to the library: the queues of a session whose rings lie in a file, so that what was
/// logged outlives a process that is killed. See lgRingFormat.h.
///
/// A thread logs into such a queue as into any other: it only lies elsewhere. The reader takes from
/// it, but gives no room back before `commit`: until then the messages stand in the file, however
/// far they have come on their way.

#include <base/internal/log/lgClock.h>
#include <base/internal/log/lgGroupNames.h>
#include <base/internal/log/lgRingFile.h>
#include <base/internal/log/lgRingFormat.h>
#include <base/internal/log/lgSettings.h>
#include <base/lgQueue.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace Kr
{

class ThreadLabel;

class LgKeptRings final : private LgGroupNames::Watcher
{
public:
    LgKeptRings(const LgSettings& settings, const LgClock& clock);
    LgKeptRings(const LgKeptRings&) = delete;
    LgKeptRings& operator=(const LgKeptRings&) = delete;

    /// No queue may be left.
    ~LgKeptRings();

    /// The queue of a thread; null, with a line on the standard error stream the first time, if it
    /// cannot be in the file. The first one makes the file. May be called by any thread.
    LgQueue* addQueue(unsigned long thread,
                      const std::shared_ptr<const ThreadLabel>& label) noexcept;

    /// Destroys such a queue, which has been read. May be called by any thread.
    void removeQueue(LgQueue* queue) noexcept;

    /// What was read has reached its log, or waits for one that cannot be written. For the reader.
    void commit() noexcept;

    /// Removes the file: everything is written.
    void close() noexcept;

    /// In a forked process: the file stays the parent's.
    void abandon() noexcept;

private:
    struct Place
    {
        LgRingFormat::Queue* chunk;
        LgQueue* queue;
    };

    bool open();
    void writeHeader(LgRingFormat::Header& header) const;
    void markLogs(LgRingFormat::LogMark (&marks)[LgTypes::NUM_LEVELS]) const noexcept;
    void* takeChunk();
    Place build(void* memory, unsigned long thread) const;
    void mark(const Place& place, std::uint32_t side);
    void nameAdded(std::uint16_t number, std::string_view name) noexcept override;
    void complain(const char* problem) noexcept;

    const LgSettings _settings;
    const LgClock _clock;
    std::array<std::string, LgTypes::NUM_LEVELS> _ownPaths; ///< see `LgSharedFile`
    std::mutex _mutex;                                      ///< guards what follows
    bool _isOpened = false;
    bool _hasComplained = false;
    std::unique_ptr<LgRingFile> _file;
    LgRingFormat::Header* _header = nullptr;
    std::vector<Place> _places;
    std::vector<void*> _freeChunks;
    std::string _threadName;

    LgRingFormat::Names* _names = nullptr; ///< the chunk that has room; guarded by the names' lock
    std::atomic<bool> _isAbandoned{false};
};

} // namespace Kr
