#pragma once

/// @file
/// Internal to the library: where the lines of one or more levels go, a file or a standard stream,
/// with a buffer before it.
///
/// While the file cannot be written, lines wait in the buffer; the oldest make room for the
/// youngest and are counted. The first failure is told once on the standard error stream. When the
/// file can be written again, a record tells how many were lost, and the waiting lines follow. What
/// no record has told by the end stands on the standard error stream.
///
/// A stream may take a part of a line: the rest of it stays in front of the buffer. So does what a
/// file is writing that has not answered yet.
///
/// Used by one thread at a time, but for `getLostCount`.

#include <base/internal/log/lgFile.h>
#include <base/internal/log/lgLineFormat.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Kr
{

class LgOutput
{
public:
    /// How many bytes are written at a time, and how many may wait for a file that fails.
    static constexpr std::size_t batchSize = 64 * 1024;
    static constexpr std::size_t maxWaiting = 256 * 1024;

    /// @param name what the complaint on the standard error stream calls it
    /// @param maxBatch the most bytes to be written at a time
    LgOutput(std::unique_ptr<LgFile> file, const std::string& name, LgLineFormat& format,
             std::size_t maxBatch = batchSize);
    LgOutput(const LgOutput&) = delete;
    LgOutput& operator=(const LgOutput&) = delete;

    ~LgOutput();

    /// Writes what waits, as far as that is possible; the rest is lost.
    void close() noexcept;

    /// Puts the record into the buffer, and a full buffer into the file. Where there is no memory
    /// for that, the record is lost.
    void write(const LgRecord& record) noexcept;

    /// Writes the buffer. After a failure the next try is made a little later, unless `now` is set.
    void flush(bool now = false) noexcept;

    /// Writes the buffer and returns when it is on the disk.
    void sync() noexcept;

    /// How many messages were lost here: records that report others' loss do not count. May be
    /// called by any thread.
    std::uint64_t getLostCount() const { return _lost.load(std::memory_order_relaxed); }

private:
    /// A line that is no message, but may report others' loss, and ends there in the buffer.
    struct Report
    {
        std::size_t end;
        int lost;
    };

    void append(const LgRecord& record);
    void rest();
    bool makeRoom();
    void dropAll();
    void drop(std::size_t begin, std::size_t end);
    bool writeWaiting();
    bool writeBatch(std::size_t limit);
    std::size_t nextBatch(std::size_t begin, std::size_t limit) const;
    std::size_t getFixed() const;
    void takeOut(std::size_t begin, std::size_t end);
    void beginOutage();
    void complainOfOutage();
    void reportLoss();
    void insertLossReport();
    void insertReport(const LgRecord& record);
    void takeNews();

    const std::unique_ptr<LgFile> _file;
    const std::string _name;
    LgLineFormat& _format;
    const std::size_t _maxBatch;
    std::string _waiting;
    std::vector<Report> _reports;
    unsigned long long _outageStamp; ///< when the file began to fail
    bool _isFailing;
    bool _isMidLine; ///< the buffer begins with the rest of a line that was begun
    bool _hasComplained;
    std::chrono::steady_clock::time_point _nextTry;
    std::chrono::steady_clock::time_point _nextRest;
    std::atomic<std::uint64_t> _lost;
    std::uint64_t _unreported; ///< lost messages of which the file does not tell
};

} // namespace Kr
