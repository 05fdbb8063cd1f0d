#pragma once

/// @file
/// Internal to the library: a record as a JSON object on one line.
/// @verbatim
/// {"time":"2026-11-21T07:33:08.123456Z","level":"Warning","process":4711,"thread":0,...}
/// @endverbatim

#include <base/internal/log/lgClock.h>
#include <base/internal/log/lgLineFormat.h>
#include <base/internal/log/lgTimeText.h>

#include <cstdint>
#include <string>

namespace Kr
{

class LgJsonFormat : public LgLineFormat
{
public:
    /// The clock must outlive it.
    LgJsonFormat(const LgClock& clock, bool hasTimeStamps);

    /// For the records of another process.
    LgJsonFormat(const LgClock& clock, bool hasTimeStamps, std::uint32_t process);

    void append(std::string& line, const LgRecord& record) override;

private:
    LgTimeText _time;
    const bool _hasTimeStamps;
    const std::string _process;
};

} // namespace Kr
