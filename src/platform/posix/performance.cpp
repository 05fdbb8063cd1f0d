#include <platform/performance.h>
#include <platform/posix/handle.h>
#include <platform/posix/performanceTables.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#include <unistd.h>

namespace
{

using Tables = KrPerformanceTables;

constexpr double nanosecondsPerSecond = 1e9;
constexpr std::uint64_t nanosecondsPerMillisecond = 1000000;
constexpr std::uint64_t sectorSize = 512;
constexpr std::string_view totalName = "_Total";

PDH_STATUS toStatus(DWORD code) noexcept
{
    return static_cast<PDH_STATUS>(code);
}

char toSmall(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isSameName(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return toSmall(x) == toSmall(y); });
}

// What there is to count

/// What is counted at one collection, and what a share or a rate divides it by.
struct Sample
{
    std::uint64_t value = 0;
    std::uint64_t base = 1;
};

/// Whom a counter is about; only what its source tells is set.
struct Subject
{
    const KrProcessorTimes* times = nullptr;
    const KrProcessorTable* processors = nullptr;
    const KrMemoryTable* memory = nullptr;
    const KrPagingTable* paging = nullptr;
    const KrProcessRecord* process = nullptr;
    const std::vector<KrProcessRecord>* processes = nullptr;
    const KrDiskRecord* disk = nullptr;
    std::uint64_t diskCount = 1; ///< how many disks are added up in `disk`
    std::uint64_t now = 0;       ///< nanoseconds since the system's start
};

enum class Source
{
    clock,
    disk,
    memory,
    paging,
    process,
    processList,
    processor,
    processorTable
};

using Take = Sample (*)(const Subject& subject);

struct Definition
{
    const char* object;
    const char* name;
    Source source;
    DWORD type;
    Take take;
};

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
    return {subject.process->*ticks * (nanosecondsPerMillisecond * 1000 / Tables::getTickRate()),
            subject.now};
}

Sample takeElapsed(const Subject& subject)
{
    const std::uint64_t tick = nanosecondsPerMillisecond * 1000 / Tables::getTickRate();
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

constexpr Definition definitions[] = {
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

// Processes by name

/// The name as it stands in paths: what has a meaning there, or cannot be shown, is replaced.
std::string toInstanceName(std::string name)
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

/// "name#2" is the third of that name, in the order of their numbers.
struct InstanceName
{
    explicit InstanceName(std::string_view text)
        : name(text.substr(0, text.rfind('#')))
    {
        if (name.size() == text.size())
            return;
        const char* const end = text.data() + text.size();
        const char* const digits = text.data() + name.size() + 1;
        if (std::from_chars(digits, end, index).ptr != end || digits == end)
            name = text;
    }

    std::string_view name;
    unsigned index = 0;
};

/// An instance of processes that counters of one query share.
struct ProcessInstance
{
    std::string text; ///< as it stands in the path
    KrProcessRecord record;
    DWORD status = PDH_CSTATUS_NO_INSTANCE;
    bool isRead = false; ///< by the collection that is under way
};

const KrProcessRecord* findProcess(const std::vector<KrProcessRecord>& processes,
                                   std::string_view text)
{
    const InstanceName wanted(text);
    unsigned index = wanted.index;
    for (const KrProcessRecord& process : processes)
        if (isSameName(toInstanceName(process.name), wanted.name) && index-- == 0)
            return &process;
    return nullptr;
}

DWORD toCode(Tables::State state)
{
    if (state == Tables::good)
        return PDH_CSTATUS_VALID_DATA;
    return state == Tables::unreadable ? PDH_FILE_NOT_FOUND : PDH_UNKNOWN_LOG_FORMAT;
}

/// All processes as one; the time of those that have ended stays in it.
DWORD addUp(Tables& tables, KrProcessRecord& total)
{
    const auto& processes = tables.getProcesses();
    const auto& processors = tables.getProcessors();
    const auto& paging = tables.getPaging();
    for (const Tables::State state : {processes.state, processors.state, paging.state})
        if (state != Tables::good)
            return toCode(state);
    total = {};
    for (const KrProcessRecord& process : processes.record)
    {
        total.threads += process.threads;
        total.virtualBytes += process.virtualBytes;
        total.residentPages += process.residentPages;
    }
    const KrProcessorTimes& times = processors.record.all;
    total.userTicks = times.getUser();
    total.systemTicks = times.system;
    total.runTime = (total.userTicks + total.systemTicks) *
                    (nanosecondsPerMillisecond * 1000 / Tables::getTickRate());
    total.faults = paging.record.faults;
    return PDH_CSTATUS_VALID_DATA;
}

/// Reads the process that the instance was; if it is gone, the one that now has the name.
DWORD readInstance(Tables& tables, ProcessInstance& instance)
{
    if (isSameName(instance.text, totalName))
        return addUp(tables, instance.record);
    const std::uint64_t start = instance.record.startTicks;
    if (instance.status == PDH_CSTATUS_VALID_DATA)
    {
        const Tables::State state = tables.readProcess(instance.record.id, instance.record);
        if (state == Tables::malformed)
            return toCode(state);
        if (state == Tables::good && instance.record.startTicks == start)
            return PDH_CSTATUS_VALID_DATA;
    }
    const auto& processes = tables.getProcesses();
    if (processes.state != Tables::good)
        return toCode(processes.state);
    const KrProcessRecord* const found = findProcess(processes.record, instance.text);
    if (found == nullptr)
        return PDH_CSTATUS_NO_INSTANCE;
    instance.record = *found;
    Tables::refine(instance.record);
    return PDH_CSTATUS_VALID_DATA;
}

DWORD read(Tables& tables, ProcessInstance& instance)
{
    if (!instance.isRead)
        instance.status = readInstance(tables, instance);
    instance.isRead = true;
    return instance.status;
}

// Processors and disks by name

DWORD findTimes(const KrProcessorTable& table, const std::string& instance, Subject& subject)
{
    subject.times = isSameName(instance, totalName) ? &table.all : nullptr;
    for (const KrProcessorTimes& times : table.processors)
        if (std::to_string(times.number) == instance)
            subject.times = &times;
    return subject.times != nullptr ? PDH_CSTATUS_VALID_DATA : PDH_CSTATUS_NO_INSTANCE;
}

/// @param total takes all disks together, if they are asked for
DWORD findDisk(const std::vector<KrDiskRecord>& disks, const std::string& instance,
               KrDiskRecord& total, Subject& subject)
{
    if (isSameName(instance, totalName))
    {
        total = {};
        for (const KrDiskRecord& disk : disks)
        {
            total.reads += disk.reads;
            total.readSectors += disk.readSectors;
            total.writes += disk.writes;
            total.writtenSectors += disk.writtenSectors;
            total.pending += disk.pending;
            total.busyMilliseconds += disk.busyMilliseconds;
        }
        subject.disk = &total;
        subject.diskCount = std::max<std::uint64_t>(disks.size(), 1);
        return PDH_CSTATUS_VALID_DATA;
    }
    for (const KrDiskRecord& disk : disks)
        if (isSameName(toInstanceName(disk.name), instance))
            subject.disk = &disk;
    return subject.disk != nullptr ? PDH_CSTATUS_VALID_DATA : PDH_CSTATUS_NO_INSTANCE;
}

// Queries and counters

class Query;

struct Counter : KrHandleObject
{
    Counter(Query& owner, const Definition& what, std::string_view instanceText)
        : query(owner)
        , definition(what)
        , instance(instanceText)
    {
    }

    Query& query;
    const Definition& definition;
    const std::string instance;
    std::shared_ptr<ProcessInstance> process; ///< null if it is about something else
    Sample latest;
    Sample previous;
    DWORD status = PDH_NO_DATA; ///< of the latest sample
    int samples = 0;            ///< how many of the two there are
};

class Query : public KrHandleObject
{
public:
    Counter* add(const Definition& definition, std::string_view instance)
    {
        _counters.push_back(std::make_unique<Counter>(*this, definition, instance));
        Counter& counter = *_counters.back();
        if (definition.source == Source::process)
            counter.process = share(counter.instance);
        return &counter;
    }

    void remove(const Counter& counter)
    {
        _counters.erase(std::find_if(_counters.begin(), _counters.end(),
                                     [&counter](const auto& each)
                                     { return each.get() == &counter; }));
    }

    void collect()
    {
        _tables.begin();
        for (const auto& counter : _counters)
            if (counter->process != nullptr)
                counter->process->isRead = false;
        for (const auto& counter : _counters)
            collect(*counter);
    }

private:
    std::shared_ptr<ProcessInstance> share(const std::string& text) const
    {
        for (const auto& counter : _counters)
            if (counter->process != nullptr && counter->process->text == text)
                return counter->process;
        auto instance = std::make_shared<ProcessInstance>();
        instance->text = text;
        return instance;
    }

    void collect(Counter& counter)
    {
        Subject subject;
        counter.status = find(counter, subject);
        if (counter.status != PDH_CSTATUS_VALID_DATA)
        {
            counter.samples = 0;
            return;
        }
        subject.now = Tables::getUpTime();
        counter.previous = counter.latest;
        counter.latest = counter.definition.take(subject);
        counter.samples = std::min(counter.samples + 1, 2);
    }

    template <class Record>
    static DWORD point(const Tables::Table<Record>& table, const Record*& record)
    {
        record = &table.record;
        return toCode(table.state);
    }

    DWORD find(Counter& counter, Subject& subject)
    {
        switch (counter.definition.source)
        {
        case Source::clock:
            return PDH_CSTATUS_VALID_DATA;
        case Source::memory:
            return point(_tables.getMemory(), subject.memory);
        case Source::paging:
            return point(_tables.getPaging(), subject.paging);
        case Source::processList:
            return point(_tables.getProcesses(), subject.processes);
        case Source::processorTable:
            return point(_tables.getProcessors(), subject.processors);
        case Source::process:
            subject.process = &counter.process->record;
            return read(_tables, *counter.process);
        case Source::processor:
        {
            const DWORD code = point(_tables.getProcessors(), subject.processors);
            return code != PDH_CSTATUS_VALID_DATA
                       ? code
                       : findTimes(*subject.processors, counter.instance, subject);
        }
        case Source::disk:
            break;
        }
        const auto& disks = _tables.getDisks();
        return disks.state != Tables::good
                   ? toCode(disks.state)
                   : findDisk(disks.record, counter.instance, _allDisks, subject);
    }

    Tables _tables;
    KrDiskRecord _allDisks;
    std::vector<std::unique_ptr<Counter>> _counters;
};

/// "\Object(instance)\Counter"
struct PathParts
{
    explicit PathParts(std::string_view path)
    {
        if (path.empty() || path.front() != '\\')
            return;
        path.remove_prefix(1);
        const std::size_t objectEnd = path.find_first_of("(\\");
        const std::size_t counterBegin =
            objectEnd == path.npos || path[objectEnd] == '\\' ? objectEnd : path.rfind(")\\") + 1;
        if (objectEnd == path.npos || counterBegin == 0)
            return;
        object = path.substr(0, objectEnd);
        counter = path.substr(counterBegin + 1);
        if (counterBegin > objectEnd)
            instance = path.substr(objectEnd + 1, counterBegin - objectEnd - 2);
    }

    std::string_view object;
    std::string_view instance;
    std::string_view counter;
};

bool hasInstances(Source source)
{
    return source == Source::process || source == Source::processor || source == Source::disk;
}

PDH_STATUS add(Query& query, const PathParts& path, PDH_HCOUNTER* counter)
{
    DWORD problem = PDH_CSTATUS_NO_OBJECT;
    for (const Definition& definition : definitions)
    {
        if (!isSameName(definition.object, path.object))
            continue;
        problem = PDH_CSTATUS_NO_COUNTER;
        if (!isSameName(definition.name, path.counter))
            continue;
        if (hasInstances(definition.source) == path.instance.empty())
            return toStatus(PDH_CSTATUS_NO_INSTANCE);
        *counter = static_cast<KrHandleObject*>(query.add(definition, path.instance));
        return 0;
    }
    return toStatus(problem);
}

// Values

DWORD format(const Counter& counter, double& value)
{
    if (counter.status != PDH_CSTATUS_VALID_DATA)
        return counter.status;
    const auto latest = static_cast<double>(counter.latest.value);
    switch (counter.definition.type)
    {
    case PERF_RAW_FRACTION:
        value =
            100. * latest / static_cast<double>(std::max<std::uint64_t>(counter.latest.base, 1));
        return PDH_CSTATUS_VALID_DATA;
    case PERF_ELAPSED_TIME:
        value = latest / nanosecondsPerSecond;
        return PDH_CSTATUS_VALID_DATA;
    case plain:
        value = latest;
        return PDH_CSTATUS_VALID_DATA;
    default:
        break;
    }
    if (counter.samples < 2)
        return PDH_CSTATUS_INVALID_DATA;
    if (counter.latest.base <= counter.previous.base)
        return PDH_CALC_NEGATIVE_DENOMINATOR;
    if (counter.latest.value < counter.previous.value)
        return PDH_CALC_NEGATIVE_VALUE;
    const double factor = counter.definition.type == share ? 100. : nanosecondsPerSecond;
    value = factor * static_cast<double>(counter.latest.value - counter.previous.value) /
            static_cast<double>(counter.latest.base - counter.previous.base);
    return PDH_CSTATUS_VALID_DATA;
}

struct StatusText
{
    DWORD status;
    const char* text;
};

constexpr StatusText statusTexts[] = {
    {PDH_CSTATUS_NO_INSTANCE, "The specified instance is not present."},
    {PDH_NO_DATA, "There is no data to return."},
    {PDH_CALC_NEGATIVE_DENOMINATOR, "No time has passed since the last collection."},
    {PDH_CALC_NEGATIVE_VALUE, "What is counted has begun anew."},
    {PDH_CSTATUS_NO_OBJECT, "The specified object was not found on the system."},
    {PDH_CSTATUS_NO_COUNTER, "The specified counter could not be found."},
    {PDH_CSTATUS_INVALID_DATA, "The returned data is not valid."},
    {PDH_MEMORY_ALLOCATION_FAILURE, "Not enough memory is available."},
    {PDH_INVALID_HANDLE, "The handle is not a valid handle of a counter or a query."},
    {PDH_INVALID_ARGUMENT, "A required argument is missing or incorrect."},
    {PDH_FILE_NOT_FOUND, "The kernel's table cannot be read."},
    {PDH_UNKNOWN_LOG_FORMAT, "The kernel's table is not in its known form."},
};

// Lists

void listProcesses(std::vector<std::string>& instances, Tables& tables)
{
    for (const KrProcessRecord& process : tables.getProcesses().record)
        instances.push_back(toInstanceName(process.name));
}

void listProcessors(std::vector<std::string>& instances, Tables& tables)
{
    for (const KrProcessorTimes& times : tables.getProcessors().record.processors)
        instances.push_back(std::to_string(times.number));
}

void listDisks(std::vector<std::string>& instances, Tables& tables)
{
    for (const KrDiskRecord& disk : tables.getDisks().record)
        instances.push_back(toInstanceName(disk.name));
}

Tables::State listInstances(Source source, std::vector<std::string>& instances)
{
    Tables tables;
    if (source == Source::process)
        listProcesses(instances, tables);
    else if (source == Source::processor)
        listProcessors(instances, tables);
    else if (source == Source::disk)
        listDisks(instances, tables);
    else
        return Tables::good;
    instances.emplace_back(totalName);
    return source == Source::process     ? tables.getProcesses().state
           : source == Source::processor ? tables.getProcessors().state
                                         : tables.getDisks().state;
}

/// Runs what allocates memory.
template <class Body>
PDH_STATUS guarded(Body body) noexcept
{
    try
    {
        return body();
    }
    catch (const std::bad_alloc&)
    {
        return toStatus(PDH_MEMORY_ALLOCATION_FAILURE);
    }
}

} // namespace

PDH_STATUS PdhOpenQueryA(const char* source, DWORD_PTR, PDH_HQUERY* query) noexcept
{
    if (source != nullptr || query == nullptr)
        return toStatus(PDH_INVALID_ARGUMENT);
    return guarded(
        [query]
        {
            *query = static_cast<KrHandleObject*>(new Query);
            return PDH_STATUS{0};
        });
}

PDH_STATUS PdhAddEnglishCounterA(PDH_HQUERY query, const char* path, DWORD_PTR,
                                 PDH_HCOUNTER* counter) noexcept
{
    auto* const object = krObject<Query>(query);
    if (object == nullptr)
        return toStatus(PDH_INVALID_HANDLE);
    if (path == nullptr || counter == nullptr)
        return toStatus(PDH_INVALID_ARGUMENT);
    return guarded([&] { return add(*object, PathParts(path), counter); });
}

PDH_STATUS PdhRemoveCounter(PDH_HCOUNTER counter) noexcept
{
    const auto* const object = krObject<Counter>(counter);
    if (object == nullptr)
        return toStatus(PDH_INVALID_HANDLE);
    object->query.remove(*object);
    return 0;
}

PDH_STATUS PdhCollectQueryData(PDH_HQUERY query) noexcept
{
    auto* const object = krObject<Query>(query);
    if (object == nullptr)
        return toStatus(PDH_INVALID_HANDLE);
    return guarded(
        [object]
        {
            object->collect();
            return PDH_STATUS{0};
        });
}

PDH_STATUS PdhGetFormattedCounterValue(PDH_HCOUNTER counter, DWORD format, DWORD* type,
                                       PDH_FMT_COUNTERVALUE* value) noexcept
{
    const auto* const object = krObject<Counter>(counter);
    if (object == nullptr)
        return toStatus(PDH_INVALID_HANDLE);
    if ((format & PDH_FMT_DOUBLE) == 0 || value == nullptr)
        return toStatus(PDH_INVALID_ARGUMENT);
    if (type != nullptr)
        *type = object->definition.type;
    value->CStatus = ::format(*object, value->doubleValue);
    return value->CStatus == PDH_CSTATUS_VALID_DATA ? 0 : toStatus(PDH_INVALID_DATA);
}

PDH_STATUS PdhGetCounterInfoA(PDH_HCOUNTER counter, BOOLEAN, DWORD* size,
                              PDH_COUNTER_INFO_A* info) noexcept
{
    const auto* const object = krObject<Counter>(counter);
    if (object == nullptr)
        return toStatus(PDH_INVALID_HANDLE);
    if (size == nullptr)
        return toStatus(PDH_INVALID_ARGUMENT);
    const bool isTooSmall = *size < sizeof *info || info == nullptr;
    *size = sizeof *info;
    if (isTooSmall)
        return toStatus(PDH_MORE_DATA);
    *info = {sizeof *info, object->definition.type};
    return 0;
}

PDH_STATUS PdhCloseQuery(PDH_HQUERY query) noexcept
{
    auto* const object = krObject<Query>(query);
    if (object == nullptr)
        return toStatus(PDH_INVALID_HANDLE);
    object->close();
    return 0;
}

PDH_STATUS krListCounterObjects(std::vector<std::string>& objects)
{
    for (const Definition& definition : definitions)
        if (objects.empty() || objects.back() != definition.object)
            objects.emplace_back(definition.object);
    return 0;
}

PDH_STATUS krListCounterItems(const std::string& object, std::vector<std::string>& counters,
                              std::vector<std::string>& instances)
{
    const Definition* any = nullptr;
    for (const Definition& definition : definitions)
    {
        if (!isSameName(definition.object, object))
            continue;
        counters.emplace_back(definition.name);
        any = &definition;
    }
    if (any == nullptr)
        return toStatus(PDH_CSTATUS_NO_OBJECT);
    return toStatus(toCode(listInstances(any->source, instances)));
}

PDH_STATUS krGetCounterValue(PDH_HCOUNTER counter, DWORD& status, double& value) noexcept
{
    PDH_FMT_COUNTERVALUE formatted{};
    const PDH_STATUS result = PdhGetFormattedCounterValue(
        counter, PDH_FMT_DOUBLE | PDH_FMT_NOSCALE | PDH_FMT_NOCAP100, nullptr, &formatted);
    status = formatted.CStatus;
    value = formatted.doubleValue;
    return result;
}

std::string krDescribeCounterStatus(DWORD status)
{
    for (const StatusText& entry : statusTexts)
        if (entry.status == status)
            return entry.text;
    return {};
}
