#pragma once

/// @file
/// Internal to the library: a record as a line of text in columns.
/// @verbatim
/// 2026-11-21T07:33:08.123456Z  Warning         4711:main     Database      no index, scanning
/// @endverbatim
/// A record stays one line whatever its text holds: control characters are escaped as in C
/// (`\n`, `\x1b`). Backslashes are not, so that paths stay readable; the JSON form is the exact
/// one.

#include <base/internal/log/lgClock.h>
#include <base/internal/log/lgLineFormat.h>
#include <base/internal/log/lgTimeText.h>

#include <cstdint>
#include <string>

namespace Kr
{

class LgColumnFormat : public LgLineFormat
{
public:
    /// The clock must outlive it.
    LgColumnFormat(const LgClock& clock, bool hasTimeStamps);

    /// For the records of another process.
    LgColumnFormat(const LgClock& clock, bool hasTimeStamps, std::uint32_t process);

    void append(std::string& line, const LgRecord& record) override;

private:
    LgTimeText _time;
    const bool _hasTimeStamps;
    const std::string _process;
};

} // namespace Kr
