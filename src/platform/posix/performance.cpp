#include <platform/performance.h>
#include <platform/posix/handle.h>
#include <platform/posix/performanceCounters.h>
#include <platform/posix/performanceTables.h>
#include <platform/posix/sameName.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <new>
#include <string_view>

namespace
{

using Definition = KrCounterDefinition;
using Sample = KrCounterSample;
using Source = KrCounterSource;
using Subject = KrCounterSubject;
using Tables = KrPerformanceTables;

PDH_STATUS toStatus(DWORD code) noexcept
{
    return static_cast<PDH_STATUS>(code);
}

// Processes by name

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
    bool isRead = false;    ///< by the collection that is under way
    std::uint64_t time = 0; ///< when it was read
};

const KrProcessRecord* findProcess(const std::vector<KrProcessRecord>& processes,
                                   std::string_view text)
{
    const InstanceName wanted(text);
    unsigned index = wanted.index;
    for (const KrProcessRecord& process : processes)
        if (krIsSameName(krToInstanceName(process.name), wanted.name) && index-- == 0)
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
    total.runTime =
        (total.userTicks + total.systemTicks) * (krNanosecondsPerSecond / Tables::getTickRate());
    total.faults = paging.record.faults;
    return PDH_CSTATUS_VALID_DATA;
}

/// Reads the process that the instance was; if it is gone, the one that now has the name.
DWORD readInstance(Tables& tables, ProcessInstance& instance)
{
    if (krIsSameName(instance.text, krTotalInstance))
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
    {
        instance.status = readInstance(tables, instance);
        instance.time = Tables::getUpTime();
    }
    instance.isRead = true;
    return instance.status;
}

// Processors and disks by name

DWORD findTimes(const KrProcessorTable& table, const std::string& instance, Subject& subject)
{
    subject.times = krIsSameName(instance, krTotalInstance) ? &table.all : nullptr;
    for (const KrProcessorTimes& times : table.processors)
        if (std::to_string(times.number) == instance)
            subject.times = &times;
    return subject.times != nullptr ? PDH_CSTATUS_VALID_DATA : PDH_CSTATUS_NO_INSTANCE;
}

/// @param total takes all disks together, if they are asked for
DWORD findDisk(const std::vector<KrDiskRecord>& disks, const std::string& instance,
               KrDiskRecord& total, Subject& subject)
{
    if (krIsSameName(instance, krTotalInstance))
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
        if (krIsSameName(krToInstanceName(disk.name), instance))
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
    ~Counter() override { take(handle); }

    HANDLE handle = INVALID_HANDLE_VALUE; ///< closed with the counter, which its query owns
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
    /// INVALID_HANDLE_VALUE if there are too many.
    HANDLE add(const Definition& definition, std::string_view instance)
    {
        _counters.push_back(std::make_unique<Counter>(*this, definition, instance));
        Counter& counter = *_counters.back();
        if (definition.source == Source::process)
            counter.process = share(counter.instance);
        const HANDLE handle = KrHandleObject::open(&counter);
        if (handle != INVALID_HANDLE_VALUE)
            counter.handle = handle;
        else
        {
            _counters.back().release(); // NOLINT(bugprone-unused-return-value): `open` deleted it
            _counters.pop_back();
        }
        return handle;
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
        counter.previous = counter.latest;
        counter.latest = counter.definition.take(subject);
        counter.samples = std::min(counter.samples + 1, 2);
    }

    template <class Record>
    static DWORD point(const Tables::Table<Record>& table, const Record*& record, Subject& subject)
    {
        record = &table.record;
        subject.now = table.time;
        return toCode(table.state);
    }

    DWORD find(Counter& counter, Subject& subject)
    {
        switch (counter.definition.source)
        {
        case Source::clock:
            subject.now = Tables::getUpTime();
            return PDH_CSTATUS_VALID_DATA;
        case Source::memory:
            return point(_tables.getMemory(), subject.memory, subject);
        case Source::paging:
            return point(_tables.getPaging(), subject.paging, subject);
        case Source::processList:
            return point(_tables.getProcesses(), subject.processes, subject);
        case Source::processorTable:
            return point(_tables.getProcessors(), subject.processors, subject);
        case Source::process:
            return findProcess(*counter.process, subject);
        case Source::processor:
            return findProcessor(counter.instance, subject);
        case Source::disk:
            break;
        }
        return findDisk(counter.instance, subject);
    }

    DWORD findProcess(ProcessInstance& instance, Subject& subject)
    {
        const DWORD code = read(_tables, instance);
        subject.process = &instance.record;
        subject.now = instance.time;
        return code;
    }

    DWORD findProcessor(const std::string& instance, Subject& subject)
    {
        const DWORD code = point(_tables.getProcessors(), subject.processors, subject);
        return code != PDH_CSTATUS_VALID_DATA ? code
                                              : findTimes(*subject.processors, instance, subject);
    }

    DWORD findDisk(const std::string& instance, Subject& subject)
    {
        const auto& disks = _tables.getDisks();
        subject.now = disks.time;
        return disks.state != Tables::good ? toCode(disks.state)
                                           : ::findDisk(disks.record, instance, _allDisks, subject);
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

PDH_STATUS add(Query& query, const PathParts& path, PDH_HCOUNTER* counter)
{
    DWORD problem = PDH_CSTATUS_NO_OBJECT;
    for (const Definition& definition : krCounterDefinitions())
    {
        if (!krIsSameName(definition.object, path.object))
            continue;
        problem = PDH_CSTATUS_NO_COUNTER;
        if (!krIsSameName(definition.name, path.counter))
            continue;
        if (krHasInstances(definition.source) == path.instance.empty())
            return toStatus(PDH_CSTATUS_NO_INSTANCE);
        *counter = query.add(definition, path.instance);
        return *counter != INVALID_HANDLE_VALUE ? 0 : toStatus(PDH_MEMORY_ALLOCATION_FAILURE);
    }
    return toStatus(problem);
}

// Values

bool needsTwo(const Counter& counter)
{
    return (counter.definition.type & PERF_DELTA_COUNTER) != 0;
}

DWORD format(const Counter& counter, double& value)
{
    if (counter.status != PDH_CSTATUS_VALID_DATA)
        return counter.status;
    if (needsTwo(counter) && counter.samples < 2)
        return PDH_CSTATUS_INVALID_DATA;
    return krFormatCounter(counter.definition.type, counter.previous, counter.latest, value);
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

Tables::State listProcesses(std::vector<std::string>& instances)
{
    Tables tables;
    for (const KrProcessRecord& process : tables.getProcesses().record)
        instances.push_back(krToInstanceName(process.name));
    return tables.getProcesses().state;
}

Tables::State listProcessors(std::vector<std::string>& instances)
{
    Tables tables;
    for (const KrProcessorTimes& times : tables.getProcessors().record.processors)
        instances.push_back(std::to_string(times.number));
    return tables.getProcessors().state;
}

Tables::State listDisks(std::vector<std::string>& instances)
{
    Tables tables;
    for (const KrDiskRecord& disk : tables.getDisks().record)
        instances.push_back(krToInstanceName(disk.name));
    return tables.getDisks().state;
}

Tables::State listInstances(Source source, std::vector<std::string>& instances)
{
    if (!krHasInstances(source))
        return Tables::good;
    const Tables::State state = source == Source::process     ? listProcesses(instances)
                                : source == Source::processor ? listProcessors(instances)
                                                              : listDisks(instances);
    instances.emplace_back(krTotalInstance);
    return state;
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
            *query = KrHandleObject::open(std::make_unique<Query>().release());
            return *query != INVALID_HANDLE_VALUE ? PDH_STATUS{0}
                                                  : toStatus(PDH_MEMORY_ALLOCATION_FAILURE);
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
    if (krObject<Query>(query) == nullptr)
        return toStatus(PDH_INVALID_HANDLE);
    CloseHandle(query);
    return 0;
}

PDH_STATUS krListCounterObjects(std::vector<std::string>& objects)
{
    for (const Definition& definition : krCounterDefinitions())
        if (objects.empty() || objects.back() != definition.object)
            objects.emplace_back(definition.object);
    return 0;
}

PDH_STATUS krListCounterItems(const std::string& object, std::vector<std::string>& counters,
                              std::vector<std::string>& instances)
{
    const Definition* any = nullptr;
    for (const Definition& definition : krCounterDefinitions())
    {
        if (!krIsSameName(definition.object, object))
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
