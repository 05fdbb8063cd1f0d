#pragma once

/// @file
/// The records of several logs as one, in the order of their times.

#include "logFile.h"
#include "logRecord.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace KrLog
{

/// Within a log, lines of several processes may stand a little out of order: they are put right as
/// far as they stand no more than some thousand lines apart. A line without a time goes with the
/// line before it.
class Merge
{
public:
    using Take = std::function<void(const Record& record)>;

    void add(const std::string& path, bool withRotated);

    /// Hands over what there is, the last line of a log also if it is not ended, unless that is
    /// being followed.
    void run(const Take& take, bool isFollowing);

private:
    struct Source
    {
        LogFile file;
        std::string lastTime;
        std::optional<Record> head = std::nullopt;
    };

    struct Waiting
    {
        std::string time;
        std::uint64_t number;
        Record record;
    };

    static bool isLater(const Waiting& a, const Waiting& b);
    static void advance(Source& source, bool isFollowing);
    Source* findEarliest();
    void wait(Source& source);
    void handOver(std::size_t stay, const Take& take);

    std::vector<Source> _sources;
    std::vector<Waiting> _waiting; ///< a heap, the earliest in front
    std::uint64_t _count = 0;
};

} // namespace KrLog
