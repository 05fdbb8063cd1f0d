#include <base/profConsolidator.h>

#include <base/internal/prof/profTable.h>
#include <base/profilerBase.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace Kr
{

ProfConsolidator::ProfConsolidator()
    : _cycles(0)
    , _total(0.)
    , _minimum(std::numeric_limits<double>::max())
    , _maximum(0.)
    , _counters(nullptr)
{
}

ProfConsolidator::~ProfConsolidator() = default;

void ProfConsolidator::consolidate(ProfilerBase& profiler)
{
    _cycles = static_cast<std::int32_t>(static_cast<std::uint32_t>(_cycles) +
                                        static_cast<std::uint32_t>(profiler.cycles()));
    _total += profiler.totalTime();
    _minimum = std::min(_minimum, profiler.minTime());
    _maximum = std::max(_maximum, profiler.maxTime());
}

double ProfConsolidator::averageTime() const
{
    return _cycles != 0 ? _total / _cycles : 0.;
}

double ProfConsolidator::minTime() const
{
    return _cycles != 0 ? _minimum : 0.;
}

const ProfCounters* ProfConsolidator::setCounters(const ProfCounters* counters)
{
    return std::exchange(_counters, counters);
}

std::ostream& operator<<(std::ostream& os, const ProfConsolidator& consolidator)
{
    ProfTable table(os);
    os << "Profiler Consolidator:" << std::endl;
    table.writeLine("Nb of cycles:", consolidator.cycles());
    table.writeLine("Total time:", consolidator.totalTime());
    table.writeLine("Average time:", consolidator.averageTime());
    table.writeLine("Minimum time:", consolidator.minTime());
    table.writeLine("Maximum time:", consolidator.maxTime());
    table.writeCounters(consolidator.getCounters());
    return os << std::endl;
}

} // namespace Kr
