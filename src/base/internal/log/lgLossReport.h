#pragma once

/// @file
/// Internal to the library: tells in the log of the messages that memory was too short for, and of
/// those that a group's limit withheld.

#include <base/internal/log/lgLimit.h>
#include <base/internal/log/lgReader.h>

#include <cstdint>

namespace Kr
{

class LgLossReport
{
public:
    explicit LgLossReport(LgReader& reader);

    /// Adds the records. What limits withhold is told once a second, unless `now` is set.
    void tell(bool now) noexcept;

private:
    void tellUntold() noexcept;
    void tellWithheld(LgLimit& limit) noexcept;

    LgReader& _reader;
    std::uint64_t _lastSecond;
};

} // namespace Kr
