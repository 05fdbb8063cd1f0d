#pragma once

/// @file
/// Internal to the library: what stands in a file of rings (lgRingFormat.h), read with doubt: the
/// file may have been damaged, or made to do damage. Whatever it holds, reading it touches nothing
/// outside of its chunks, and what does not fit together is left out.

#include <base/internal/log/lgClock.h>
#include <base/internal/log/lgRingFormat.h>
#include <base/lgTypes.h>

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace Kr
{

class LgRingImage
{
public:
    /// A message that the owner of the file had not committed, or a number of lost ones.
    struct Message
    {
        std::uint32_t queue = 0; ///< a number for each
        std::uint64_t timeStamp = 0;
        unsigned long thread = 0;
        std::string threadName;
        std::uint16_t groupNumber = 0;
        std::string group; ///< empty: none, or its name is missing
        LgTypes::Level level = LgTypes::Informational;
        std::string text;
        std::uint32_t lost = 0;
        bool isCut = false;
    };

    using Chunk = unsigned char[LgRingFormat::chunkSize];

    /// The first chunk; false if that is none of a file that this library reads.
    bool readHeader(const Chunk& chunk);

    /// The others, in any order.
    void readChunk(const Chunk& chunk);

    /// The messages in the order of their time stamps, as far as that keeps each queue's order.
    std::vector<Message> takeMessages();

    std::uint32_t getProcess() const { return _process; }
    bool isJson() const { return _isJson; }
    bool hasTimeStamps() const { return _hasTimeStamps; }
    int getKeptFiles() const { return _keptFiles; }
    std::uint64_t getMaxFileSize() const { return _maxFileSize; }
    const LgClock& getClock() const { return _clock; }
    LgRingFormat::Destination::Which getDestination(std::size_t level) const
    {
        return _destinations[level].which;
    }
    const std::string& getPath(std::size_t level) const { return _destinations[level].path; }
    const LgRingFormat::LogMark& getMark(std::size_t level) const
    {
        return _destinations[level].mark;
    }

private:
    struct Destination
    {
        LgRingFormat::Destination::Which which = LgRingFormat::Destination::nowhere;
        std::string path;
        LgRingFormat::LogMark mark = {};
    };

    bool readClock(const Chunk& chunk);
    void readDestination(const Chunk& chunk, std::size_t level);
    void readNames(const Chunk& chunk);
    void readQueue(const Chunk& chunk);
    void resolveGroups();
    std::uint64_t limitStamp(std::uint64_t timeStamp) const;

    std::uint32_t _process = 0;
    bool _isJson = false;
    bool _hasTimeStamps = true;
    int _keptFiles = 1;
    std::uint64_t _maxFileSize = 0;
    std::uint32_t _side = 0; ///< which of two places holds the last commit
    LgClock _clock{0, 0, 1};
    Destination _destinations[LgTypes::NUM_LEVELS];
    std::unordered_map<std::uint16_t, std::string> _names;
    std::vector<std::vector<Message>> _queues;
};

} // namespace Kr
