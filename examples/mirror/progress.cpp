#include "progress.h"

#include <base/osTerminal.h>

#include <cstdio>
#include <iostream>

std::string describeBytes(double bytes)
{
    const char* const units[] = {"bytes", "KiB", "MiB", "GiB"};
    std::size_t unit = 0;
    for (; bytes >= 1024. && unit < 3; ++unit)
        bytes /= 1024.;
    char text[32];
    std::snprintf(text, sizeof text, "%.*f %s", unit == 0 ? 0 : 1, bytes, units[unit]);
    return text;
}

Progress::Progress(const char* what, std::uint64_t total)
    : _what(what)
    , _total(total)
    , _isTerminal(Kr::OsTerminal::isTerminal(Kr::OsTerminal::StandardOutput))
    , _time("progress")
{
    _time.start();
}

void Progress::add(std::uint64_t bytes)
{
    _done += bytes;
    const auto percent = _total != 0 ? static_cast<unsigned>(_done * 100 / _total) : 100U;
    const unsigned step = _isTerminal ? 1 : 10;
    if (percent / step != _shown / step && percent < 100)
        print(percent);
}

void Progress::finish()
{
    print(100);
    if (_isTerminal)
        std::cout << '\n';
}

void Progress::print(unsigned percent)
{
    _shown = percent;
    _time.stop();
    const double seconds = _time.timeInterval();
    const double rate = seconds > 0. ? static_cast<double>(_done) / seconds : 0.;
    char text[96];
    std::snprintf(text, sizeof text, "%s%-8s %3u %%  %12s/s%s", _isTerminal ? "\r" : "", _what,
                  percent, describeBytes(rate).c_str(), _isTerminal ? "  " : "\n");
    std::cout << text << std::flush;
}
