#include <platform/posix/performanceCounters.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include <unistd.h>

namespace
{

using Sample = KrCounterSample;
using Source = KrCounterSource;
using Subject = KrCounterSubject;
using Take = Sample (*)(const Subject& subject);

constexpr std::uint64_t nanosecondsPerMillisecond = 1000000;
constexpr std::uint64_t sectorSize = 512;

constexpr DWORD plain = PERF_COUNTER_LARGE_RAWCOUNT;
constexpr DWORD rate = PERF_COUNTER_BULK_COUNT;
constexpr DWORD share = PERF_100NSEC_TIMER;

/// Counters about a part of a processor's time.
template <std::uint64_t (KrProcessorTimes::*getPart)() const>
Sample takeTime(const Subject& subject)
{
    return {(subject.times->*getPart)(), subject.times->getTotal()};
}

template <class Record, const Record* Subject::*record, std::uint64_t Record::*field>
Sample takeField(const Subject& subject)
{
    return {subject.*record->*field, subject.now};
}

template <std::uint64_t KrMemoryTable::*field>
constexpr Take takeMemory = takeField<KrMemoryTable, &Subject::memory, field>;
template <std::uint64_t KrPagingTable::*field>
constexpr Take takePaging = takeField<KrPagingTable, &Subject::paging, field>;
template <std::uint64_t KrProcessRecord::*field>
constexpr Take takeProcess = takeField<KrProcessRecord, &Subject::process, field>;
template <std::uint64_t KrDiskRecord::*field>
constexpr Take takeDisk = takeField<KrDiskRecord, &Subject::disk, field>;

template <std::uint64_t unit>
Sample takeAvailable(const Subject& subject)
{
    return {subject.memory->available / unit};
}

template <std::uint64_t KrProcessRecord::*ticks>
Sample takeTicks(const Subject& subject)
{
    return {subject.process->*ticks * (krNanosecondsPerSecond / KrPerformanceTables::getTickRate()),
            subject.now};
}

Sample takeElapsed(const Subject& subject)
{
    const std::uint64_t tick = krNanosecondsPerSecond / KrPerformanceTables::getTickRate();
    return {subject.now - std::min(subject.now, subject.process->startTicks * tick)};
}

Sample takeWorkingSet(const Subject& subject)
{
    static const auto pageSize = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    return {subject.process->residentPages * pageSize};
}

Sample takeThreads(const Subject& subject)
{
    std::uint64_t count = 0;
    for (const KrProcessRecord& process : *subject.processes)
        count += process.threads;
    return {count};
}

template <std::uint64_t KrDiskRecord::*sectors>
Sample takeBytes(const Subject& subject)
{
    return {subject.disk->*sectors * sectorSize, subject.now};
}

constexpr KrCounterDefinition definitions[] = {
    {"Memory", "% Committed Bytes In Use", Source::memory, PERF_RAW_FRACTION,
     [](const Subject& s) {
         return Sample{s.memory->committed, s.memory->commitLimit};
     }},
    {"Memory", "Available Bytes", Source::memory, plain, takeAvailable<1>},
    {"Memory", "Available KBytes", Source::memory, plain, takeAvailable<1024>},
    {"Memory", "Available MBytes", Source::memory, plain, takeAvailable<1024 * 1024>},
    {"Memory", "Cache Bytes", Source::memory, plain, takeMemory<&KrMemoryTable::cached>},
    {"Memory", "Commit Limit", Source::memory, plain, takeMemory<&KrMemoryTable::commitLimit>},
    {"Memory", "Committed Bytes", Source::memory, plain, takeMemory<&KrMemoryTable::committed>},
    {"Memory", "Free & Zero Page List Bytes", Source::memory, plain,
     takeMemory<&KrMemoryTable::free>},
    {"Memory", "Page Faults/sec", Source::paging, rate, takePaging<&KrPagingTable::faults>},
    {"Memory", "Pages Input/sec", Source::paging, rate, takePaging<&KrPagingTable::pagesIn>},
    {"Memory", "Pages Output/sec", Source::paging, rate, takePaging<&KrPagingTable::pagesOut>},

    {"PhysicalDisk", "% Disk Time", Source::disk, share,
     [](const Subject& s) {
         return Sample{s.disk->busyMilliseconds * nanosecondsPerMillisecond, s.now * s.diskCount};
     }},
    {"PhysicalDisk", "Current Disk Queue Length", Source::disk, plain,
     takeDisk<&KrDiskRecord::pending>},
    {"PhysicalDisk", "Disk Bytes/sec", Source::disk, rate,
     [](const Subject& s) {
         return Sample{(s.disk->readSectors + s.disk->writtenSectors) * sectorSize, s.now};
     }},
    {"PhysicalDisk", "Disk Read Bytes/sec", Source::disk, rate,
     takeBytes<&KrDiskRecord::readSectors>},
    {"PhysicalDisk", "Disk Reads/sec", Source::disk, rate, takeDisk<&KrDiskRecord::reads>},
    {"PhysicalDisk", "Disk Transfers/sec", Source::disk, rate,
     [](const Subject& s) {
         return Sample{s.disk->reads + s.disk->writes, s.now};
     }},
    {"PhysicalDisk", "Disk Write Bytes/sec", Source::disk, rate,
     takeBytes<&KrDiskRecord::writtenSectors>},
    {"PhysicalDisk", "Disk Writes/sec", Source::disk, rate, takeDisk<&KrDiskRecord::writes>},

    {"Process", "% Privileged Time", Source::process, share,
     takeTicks<&KrProcessRecord::systemTicks>},
    {"Process", "% Processor Time", Source::process, share, takeProcess<&KrProcessRecord::runTime>},
    {"Process", "% User Time", Source::process, share, takeTicks<&KrProcessRecord::userTicks>},
    {"Process", "Creating Process ID", Source::process, plain,
     takeProcess<&KrProcessRecord::parent>},
    {"Process", "Elapsed Time", Source::process, PERF_ELAPSED_TIME, takeElapsed},
    {"Process", "ID Process", Source::process, plain,
     [](const Subject& s) { return Sample{static_cast<std::uint64_t>(s.process->id)}; }},
    {"Process", "Page Faults/sec", Source::process, rate, takeProcess<&KrProcessRecord::faults>},
    {"Process", "Thread Count", Source::process, plain, takeProcess<&KrProcessRecord::threads>},
    {"Process", "Virtual Bytes", Source::process, plain,
     takeProcess<&KrProcessRecord::virtualBytes>},
    {"Process", "Working Set", Source::process, plain, takeWorkingSet},

    {"Processor", "% Idle Time", Source::processor, share, takeTime<&KrProcessorTimes::getIdle>},
    {"Processor", "% Interrupt Time", Source::processor, share,
     takeTime<&KrProcessorTimes::getInterrupt>},
    {"Processor", "% Privileged Time", Source::processor, share,
     takeTime<&KrProcessorTimes::getPrivileged>},
    {"Processor", "% Processor Time", Source::processor, share,
     takeTime<&KrProcessorTimes::getBusy>},
    {"Processor", "% User Time", Source::processor, share, takeTime<&KrProcessorTimes::getUser>},

    {"System", "Context Switches/sec", Source::processorTable, rate,
     takeField<KrProcessorTable, &Subject::processors, &KrProcessorTable::contextSwitches>},
    {"System", "Processes", Source::processList, plain,
     [](const Subject& s) { return Sample{s.processes->size()}; }},
    {"System", "System Up Time", Source::clock, PERF_ELAPSED_TIME,
     [](const Subject& s) { return Sample{s.now}; }},
    {"System", "Threads", Source::processList, plain, takeThreads},
};

} // namespace

const std::vector<KrCounterDefinition>& krCounterDefinitions()
{
    static const std::vector<KrCounterDefinition> all(std::begin(definitions),
                                                      std::end(definitions));
    return all;
}

bool krHasInstances(KrCounterSource source)
{
    return source == Source::process || source == Source::processor || source == Source::disk;
}

DWORD krFormatCounter(DWORD type, const KrCounterSample& previous, const KrCounterSample& latest,
                      double& value)
{
    const auto number = static_cast<double>(latest.value);
    switch (type)
    {
    case PERF_RAW_FRACTION:
        value = 100. * number / static_cast<double>(std::max<std::uint64_t>(latest.base, 1));
        return PDH_CSTATUS_VALID_DATA;
    case PERF_ELAPSED_TIME:
        value = number / static_cast<double>(krNanosecondsPerSecond);
        return PDH_CSTATUS_VALID_DATA;
    case plain:
        value = number;
        return PDH_CSTATUS_VALID_DATA;
    default:
        break;
    }
    if (latest.base <= previous.base)
        return PDH_CALC_NEGATIVE_DENOMINATOR;
    if (latest.value < previous.value)
        return PDH_CALC_NEGATIVE_VALUE;
    const double factor = type == share ? 100. : static_cast<double>(krNanosecondsPerSecond);
    value = factor * static_cast<double>(latest.value - previous.value) /
            static_cast<double>(latest.base - previous.base);
    return PDH_CSTATUS_VALID_DATA;
}

std::string krToInstanceName(std::string name)
{
    for (char& c : name)
    {
        if (c == '(')
            c = '[';
        else if (c == ')')
            c = ']';
        else if (std::strchr("#/\\*", c) != nullptr || static_cast<unsigned char>(c) < ' ')
            c = '_';
    }
    return name.empty() ? "_" : name;
}
