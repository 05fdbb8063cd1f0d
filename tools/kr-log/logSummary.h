#pragma once

/// @file
/// How many messages a second of each group and level, and how many were lost.

#include "logRecord.h"

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <utility>

namespace KrLog
{

class Summary
{
public:
    void add(const Record& record);
    void print(std::ostream& out) const;

private:
    struct Count
    {
        std::uint64_t messages = 0;
        std::uint64_t inSecond = 0; ///< in `second`
        std::uint64_t most = 0;     ///< in any one
        std::string second;
    };

    void count(Count& count, const std::string& time);
    double getSeconds() const;

    std::map<std::pair<std::string, Kr::LgTypes::Level>, Count> _counts;
    Count _all;
    std::uint64_t _lost = 0;
    std::uint64_t _cut = 0;
    std::uint64_t _foreign = 0;
    std::string _first;
    std::string _last;
};

} // namespace KrLog
