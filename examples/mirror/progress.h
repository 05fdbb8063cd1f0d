#pragma once

#include <base/hwIntervalTimer.h>

#include <cstdint>
#include <string>

/// Tells how far a copy has come: in one line that overwrites itself on a terminal, else in a plain
/// line for each tenth.
class Progress
{
public:
    Progress(const char* what, std::uint64_t total);

    void add(std::uint64_t bytes);
    void finish();

private:
    void print(unsigned percent);

    const char* const _what;
    const std::uint64_t _total;
    const bool _isTerminal;
    std::uint64_t _done = 0;
    unsigned _shown = 0; ///< percent
    Kr::HwIntervalTimer _time;
};

/// "1.5 MiB", "312 bytes".
std::string describeBytes(double bytes);
