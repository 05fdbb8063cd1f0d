#pragma once

/// @file
/// Internal to the library: what the logger's reader works on, the queues of all threads and the
/// output of each level.

#include <base/internal/log/lgOutput.h>
#include <base/lgQueue.h>
#include <base/lgTypes.h>

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace Kr
{

class LgRegistry
{
public:
    LgRegistry() = default;
    LgRegistry(const LgRegistry&) = delete;
    LgRegistry& operator=(const LgRegistry&) = delete;

    /// Hands a producer's queue to the reader. May be called by any thread; waits for no output.
    void addQueue(std::shared_ptr<LgQueue> queue);

    /// The queues, those included that were added since the last call. For the reader.
    const std::vector<std::shared_ptr<LgQueue>>& getQueues();

    /// Lets go of the drained queues whose creators have ended. For the reader.
    void dropFinishedQueues();

    /// Levels may share an output; null, the initial state: the level's records are discarded.
    void setOutput(LgTypes::Level level, std::shared_ptr<LgOutput> output);
    void shareOutput(LgTypes::Level level, LgTypes::Level other)
    {
        setOutput(level, _outputs[other]);
    }
    LgOutput* getOutput(LgTypes::Level level) const { return _outputs[level].get(); }

    /// Writes what the outputs hold in their buffers. For the reader.
    void flushOutputs(bool now);

    /// The same, and returns when it is on the disk.
    void syncOutputs();

    /// Writes what can be written; the rest counts as lost.
    void closeOutputs();

    /// How many records the outputs have lost. May be called by any thread.
    std::uint64_t getLostCount() const;

private:
    std::mutex _mutex; // guards what producers add
    std::vector<std::shared_ptr<LgQueue>> _newQueues;

    std::vector<std::shared_ptr<LgQueue>> _queues;
    std::array<std::shared_ptr<LgOutput>, LgTypes::NUM_LEVELS> _outputs;
    std::vector<LgOutput*> _distinctOutputs;
};

} // namespace Kr
