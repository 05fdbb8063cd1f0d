#pragma once

/// @file
/// Internal to the library: how a record of the log reads, as one line.

#include <base/internal/log/lgRecord.h>

#include <string>

namespace Kr
{

class LgLineFormat
{
public:
    LgLineFormat() = default;
    LgLineFormat(const LgLineFormat&) = delete;
    LgLineFormat& operator=(const LgLineFormat&) = delete;
    virtual ~LgLineFormat() = default;

    /// Appends the record's line, its line feed included.
    virtual void append(std::string& line, const LgRecord& record) = 0;
};

} // namespace Kr
