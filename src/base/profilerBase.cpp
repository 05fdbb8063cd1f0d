#include <base/profilerBase.h>

#include <base/hwCounter.h>
#include <base/internal/counters/prValueText.h>
#include <base/internal/prof/profTable.h>
#include <base/lgStream.h>
#include <base/lgTimeline.h>
#include <base/profCounters.h>

#include <charconv>
#include <iterator>
#include <limits>

namespace Kr
{

namespace
{

/// What stands before each line of a table in a message.
constexpr const char* indent = "        ";

/// Writes the value as "%.9f" does.
void writeSeconds(LgStream& stream, const char* label, double seconds)
{
    char text[std::numeric_limits<double>::max_exponent10 + 16]; // sign, digits, point, nine digits
    *std::to_chars(text, std::end(text) - 1, seconds, std::chars_format::fixed, 9).ptr = '\0';
    stream << label << text << "\n";
}

void writeCounters(LgStream& stream, const ProfCounters& counters)
{
    for (const PrCounter* const counter : counters.getCounters())
    {
        stream << indent << ProfTable::describe(counters, *counter).c_str() << "\n";
        const auto statistics = counters.getStatistics(*counter);
        if (statistics.samples == 0)
            continue;
        stream << indent << "Nb of samples:  " << statistics.samples << "\n";
        const auto write = [&](const char* label, double value)
        { stream << indent << label << formatCounterValue(value).c_str() << "\n"; };
        write("Average value:  ", statistics.average);
        write("Minimum value:  ", statistics.minimum);
        write("Maximum value:  ", statistics.maximum);
    }
}

} // namespace

ProfilerBase::~ProfilerBase() = default;

const ProfCounters* ProfilerBase::getCounters() const
{
    return nullptr;
}

void ProfilerBase::recordSpan(double seconds) const
{
    const unsigned long long end = HwCounter::timeStamp();
    const double ticks = seconds * HwCounter::getRateNumerator();
    const auto length = ticks > 0. ? static_cast<unsigned long long>(ticks) : 0;
    LgTimeline::addSpan(getName(), end - length, end);
}

std::ostream& operator<<(std::ostream& os, const ProfilerBase& profiler)
{
    ProfTable table(os);
    os << "Profiler " << profiler.getName() << ":" << std::endl;
    table.writeLine("Nb of cycles:", profiler.cycles());
    table.writeLine("Total time:", profiler.totalTime());
    table.writeLine("Average time:", profiler.averageTime());
    table.writeLine("Minimum time:", profiler.minTime());
    table.writeLine("Maximum time:", profiler.maxTime());
    table.writeLine("Standard dev:", profiler.standardDeviation());
    table.writeCounters(profiler.getCounters());
    return os << std::endl;
}

LgStream& operator<<(LgStream& stream, const ProfilerBase& profiler)
{
    stream << "Profiler " << profiler.getName() << ":\n";
    stream << "        Nb of cycles:   " << profiler.cycles() << "\n";
    writeSeconds(stream, "        Total time  :   ", profiler.totalTime());
    writeSeconds(stream, "        Average time:   ", profiler.averageTime());
    writeSeconds(stream, "        Minimum time:   ", profiler.minTime());
    writeSeconds(stream, "        Maximum time:   ", profiler.maxTime());
    writeSeconds(stream, "        Standard dev:   ", profiler.standardDeviation());
    if (const ProfCounters* const counters = profiler.getCounters())
        writeCounters(stream, *counters);
    return stream << "\n";
}

} // namespace Kr
