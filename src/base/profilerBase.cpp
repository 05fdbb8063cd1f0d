#include <base/profilerBase.h>

#include <base/profTable.h>

namespace Kr
{

ProfilerBase::~ProfilerBase() = default;

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
    return os << std::endl;
}

} // namespace Kr
