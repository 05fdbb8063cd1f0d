#pragma once

/// @file
/// Internal to the library: the output of each level.
///
/// Used by one thread at a time, but for `getLostCount`.

#include <base/internal/log/lgHelper.h>
#include <base/internal/log/lgLineFormat.h>
#include <base/internal/log/lgOutput.h>
#include <base/internal/log/lgRecord.h>
#include <base/internal/log/lgSettings.h>
#include <base/lgTypes.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace Kr
{

class LgOutputs
{
public:
    LgOutputs() = default;
    LgOutputs(const LgOutputs&) = delete;
    LgOutputs& operator=(const LgOutputs&) = delete;

    /// Opens what the settings say; levels with the same destination share its output. The format
    /// must outlive the outputs.
    void open(const LgSettings& settings, LgLineFormat& format);

    /// Makes the calls to their files, and may make others.
    const std::shared_ptr<LgHelper>& getHelper() const { return _helper; }

    /// Levels may share an output; null, the initial state: the level's records are discarded.
    void setOutput(LgTypes::Level level, std::shared_ptr<LgOutput> output);

    /// Puts the record into the buffer of its level's output.
    void write(const LgRecord& record) noexcept;

    /// Writes what the outputs hold in their buffers.
    void flush(bool now) noexcept;

    /// The same, and returns when it is on the disk.
    void sync() noexcept;

    /// Writes what can be written; the rest counts as lost.
    void close() noexcept;

    /// How many records the outputs have lost. May be called by any thread.
    std::uint64_t getLostCount() const;

private:
    const std::shared_ptr<LgHelper> _helper = std::make_shared<LgHelper>();
    std::array<std::shared_ptr<LgOutput>, LgTypes::NUM_LEVELS> _outputs;
    std::vector<LgOutput*> _distinctOutputs;
};

} // namespace Kr
