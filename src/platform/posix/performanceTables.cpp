#include <platform/posix/performanceTables.h>

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <iterator>

#include <dirent.h>
#include <fcntl.h>
#include <time.h>
#include <unistd.h>

namespace
{

constexpr std::uint64_t nanosecondsPerSecond = 1000000000;

// Text

/// The words of a text, from left to right; blanks and the ends of lines separate them.
class Words
{
public:
    explicit Words(std::string_view text)
        : _rest(text)
    {
    }

    /// Empty at the end.
    std::string_view next()
    {
        _rest.remove_prefix(std::min(_rest.find_first_not_of(separators), _rest.size()));
        const std::string_view word = _rest.substr(0, _rest.find_first_of(separators));
        _rest.remove_prefix(word.size());
        return word;
    }

    bool skip(int count)
    {
        for (; count > 0; --count)
            if (next().empty())
                return false;
        return true;
    }

    bool read(std::uint64_t& number)
    {
        const std::string_view word = next();
        const char* const end = word.data() + word.size();
        const auto [rest, error] = std::from_chars(word.data(), end, number);
        return error == std::errc() && rest == end && !word.empty();
    }

    bool read(std::initializer_list<std::uint64_t*> numbers)
    {
        return std::all_of(numbers.begin(), numbers.end(),
                           [this](std::uint64_t* number) { return read(*number); });
    }

private:
    static constexpr std::string_view separators = " \t\n";

    std::string_view _rest;
};

/// Takes the next line from the text, without its end.
bool takeLine(std::string_view& text, std::string_view& line)
{
    if (text.empty())
        return false;
    line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return true;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

struct NamedNumber
{
    std::string_view name;
    std::uint64_t* number;
};

/// Reads "name number" lines; every number must be there.
template <std::size_t Count>
bool readNamed(std::string_view text, const NamedNumber (&numbers)[Count])
{
    std::size_t found = 0;
    for (std::string_view line; found < Count && takeLine(text, line);)
    {
        Words words(line);
        const std::string_view name = words.next();
        for (const NamedNumber& wanted : numbers)
        {
            if (wanted.name != name)
                continue;
            if (!words.read(*wanted.number))
                return false;
            ++found;
        }
    }
    return found == Count;
}

// Files

class File
{
public:
    explicit File(const std::string& path)
        : _descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC))
    {
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File()
    {
        if (_descriptor >= 0)
            ::close(_descriptor);
    }

    /// All that there is; the text keeps its room for the next time.
    bool readAll(std::string& text) const
    {
        constexpr std::size_t leastRoom = 4096;
        std::size_t size = 0;
        text.resize(std::max(text.capacity(), leastRoom));
        for (;;)
        {
            const ssize_t count = ::read(_descriptor, &text[size], text.size() - size);
            if (count < 0)
                return false;
            if (count == 0)
                break;
            size += static_cast<std::size_t>(count);
            if (size == text.size())
                text.resize(2 * size);
        }
        text.resize(size);
        return true;
    }

private:
    const int _descriptor; ///< -1: every read fails
};

/// The names in a directory, those of hidden files left out; false if it cannot be read.
template <class Take>
bool forEachName(const std::string& path, Take take)
{
    DIR* const directory = ::opendir(path.c_str());
    if (directory == nullptr)
        return false;
    while (const dirent* entry = ::readdir(directory))
        if (entry->d_name[0] != '.')
            take(entry->d_name);
    ::closedir(directory);
    return true;
}

std::uint64_t toNanoseconds(const timespec& time)
{
    return static_cast<std::uint64_t>(time.tv_sec) * nanosecondsPerSecond +
           static_cast<std::uint64_t>(time.tv_nsec);
}

} // namespace

bool krParseProcessors(std::string_view text, KrProcessorTable& table)
{
    bool hasAll = false;
    bool hasSwitches = false;
    table.processors.clear();
    for (std::string_view line; takeLine(text, line);)
    {
        Words words(line);
        std::string_view name = words.next();
        if (name == "ctxt")
            hasSwitches = words.read(table.contextSwitches);
        if (name.substr(0, 3) != "cpu")
            continue;
        name.remove_prefix(3);
        KrProcessorTimes times;
        if (!words.read({&times.user, &times.nice, &times.system, &times.idle, &times.ioWait,
                         &times.interrupt, &times.softInterrupt, &times.stolen}))
            return false;
        const char* const end = name.data() + name.size();
        if (name.empty())
            table.all = times;
        else if (std::from_chars(name.data(), end, times.number).ptr != end)
            return false;
        else
            table.processors.push_back(times);
        hasAll = hasAll || name.empty();
    }
    return hasAll && hasSwitches;
}

bool krParseMemory(std::string_view text, KrMemoryTable& table)
{
    const NamedNumber numbers[] = {
        {"MemTotal:", &table.total},          {"MemFree:", &table.free},
        {"MemAvailable:", &table.available},  {"Cached:", &table.cached},
        {"CommitLimit:", &table.commitLimit}, {"Committed_AS:", &table.committed}};
    if (!readNamed(text, numbers))
        return false;
    for (const NamedNumber& each : numbers)
        *each.number *= 1024; // the table is in kilobytes
    return true;
}

bool krParsePaging(std::string_view text, KrPagingTable& table)
{
    return readNamed(
        text,
        {{"pgfault", &table.faults}, {"pswpin", &table.pagesIn}, {"pswpout", &table.pagesOut}});
}

/// The name may hold blanks and parentheses: it ends at the last of them.
bool krParseProcess(std::string_view text, KrProcessRecord& record)
{
    const std::size_t begin = text.find('(');
    const std::size_t end = text.rfind(')');
    if (begin == text.npos || end == text.npos || end < begin)
        return false;
    std::uint64_t id = 0;
    if (!Words(text.substr(0, begin)).read(id))
        return false;
    record.id = static_cast<int>(id);
    record.name = text.substr(begin + 1, end - begin - 1);
    Words words(text.substr(end + 1));
    std::uint64_t minorFaults = 0;
    std::uint64_t majorFaults = 0;
    // The numbers are those of the fields in the kernel's documentation.
    const bool isWhole =
        words.skip(1) &&                                                         // 3, the state
        words.read(record.parent) &&                                             // 4
        words.skip(5) && words.read(minorFaults) &&                              // 10
        words.skip(1) && words.read(majorFaults) &&                              // 12
        words.skip(1) && words.read({&record.userTicks, &record.systemTicks}) && // 14
        words.skip(4) && words.read(record.threads) &&                           // 20
        words.skip(1) &&
        words.read({&record.startTicks, &record.virtualBytes, &record.residentPages}); // 22
    record.faults = minorFaults + majorFaults;
    record.runTime = (record.userTicks + record.systemTicks) *
                     (nanosecondsPerSecond / KrPerformanceTables::getTickRate());
    return isWhole;
}

bool krParseDisks(std::string_view text, std::vector<KrDiskRecord>& disks)
{
    disks.clear();
    for (std::string_view line; takeLine(text, line);)
    {
        Words words(line);
        KrDiskRecord disk;
        if (!words.skip(2)) // the device's numbers
            return false;
        disk.name = words.next();
        std::uint64_t other = 0;
        if (!words.read({&disk.reads, &other, &disk.readSectors, &other, &disk.writes, &other,
                         &disk.writtenSectors, &other, &disk.pending, &disk.busyMilliseconds}))
            return false;
        disks.push_back(disk);
    }
    return true;
}

KrPerformanceTables::KrPerformanceTables(std::string processes, std::string devices)
    : _processes(std::move(processes))
    , _devices(std::move(devices))
{
}

void KrPerformanceTables::begin()
{
    _processorTable.isRead = false;
    _memoryTable.isRead = false;
    _pagingTable.isRead = false;
    _processTable.isRead = false;
    _diskTable.isRead = false;
}

bool KrPerformanceTables::readText(const std::string& path)
{
    return File(path).readAll(_text);
}

template <class Record, class Read>
const KrPerformanceTables::Table<Record>& KrPerformanceTables::once(Table<Record>& table, Read read)
{
    if (table.isRead)
        return table;
    table.state = read(table.record);
    table.time = getUpTime();
    table.isRead = true;
    return table;
}

template <class Record>
const KrPerformanceTables::Table<Record>&
KrPerformanceTables::once(Table<Record>& table, const char* file,
                          bool (*parse)(std::string_view, Record&))
{
    return once(table,
                [&](Record& record)
                {
                    _path.assign(_processes).append(file);
                    if (!readText(_path))
                        return unreadable;
                    return parse(_text, record) ? good : malformed;
                });
}

const KrPerformanceTables::Table<KrProcessorTable>& KrPerformanceTables::getProcessors()
{
    return once(_processorTable, "/stat", krParseProcessors);
}

const KrPerformanceTables::Table<KrMemoryTable>& KrPerformanceTables::getMemory()
{
    return once(_memoryTable, "/meminfo", krParseMemory);
}

const KrPerformanceTables::Table<KrPagingTable>& KrPerformanceTables::getPaging()
{
    return once(_pagingTable, "/vmstat", krParsePaging);
}

const KrPerformanceTables::Table<std::vector<KrProcessRecord>>& KrPerformanceTables::getProcesses()
{
    return once(_processTable, [this](std::vector<KrProcessRecord>& processes)
                { return readProcesses(processes); });
}

const KrPerformanceTables::Table<std::vector<KrDiskRecord>>& KrPerformanceTables::getDisks()
{
    return once(_diskTable, [this](std::vector<KrDiskRecord>& disks) { return readDisks(disks); });
}

KrPerformanceTables::State KrPerformanceTables::readDisks(std::vector<KrDiskRecord>& disks)
{
    _path.assign(_processes).append("/diskstats");
    if (!readText(_path))
        return unreadable;
    if (!krParseDisks(_text, disks))
        return malformed;
    const auto isNoDevice = [this](const KrDiskRecord& disk)
    {
        std::string name = disk.name;
        std::replace(name.begin(), name.end(), '/', '!'); // as the list writes it
        return ::access((_devices + '/' + name + "/device").c_str(), F_OK) != 0;
    };
    disks.erase(std::remove_if(disks.begin(), disks.end(), isNoDevice), disks.end());
    return good;
}

KrPerformanceTables::State KrPerformanceTables::readRecord(int id, KrProcessRecord& record)
{
    _path.assign(_processes).append("/").append(std::to_string(id)).append("/stat");
    if (!readText(_path))
        return unreadable;
    return krParseProcess(_text, record) ? good : malformed;
}

/// A process that ends while the list is read is left out.
KrPerformanceTables::State
KrPerformanceTables::readProcesses(std::vector<KrProcessRecord>& processes)
{
    _ids.clear();
    processes.clear();
    const auto addId = [this](std::string_view name)
    {
        int id = 0;
        if (isDigit(name.front()) &&
            std::from_chars(name.data(), name.data() + name.size(), id).ec == std::errc())
            _ids.push_back(id);
    };
    if (!forEachName(_processes, addId))
        return unreadable;
    std::sort(_ids.begin(), _ids.end());
    for (const int id : _ids)
    {
        KrProcessRecord record;
        const State state = readRecord(id, record);
        if (state == malformed)
            return malformed;
        if (state == good)
            processes.push_back(std::move(record));
    }
    return good;
}

KrPerformanceTables::State KrPerformanceTables::readProcess(int id, KrProcessRecord& record)
{
    const State state = readRecord(id, record);
    if (state == good)
        refine(record);
    return state;
}

void KrPerformanceTables::refine(KrProcessRecord& record)
{
    clockid_t clock{};
    timespec time{};
    if (::clock_getcpuclockid(record.id, &clock) == 0 && ::clock_gettime(clock, &time) == 0)
        record.runTime = toNanoseconds(time);
}

std::uint64_t KrPerformanceTables::getUpTime()
{
    timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return toNanoseconds(now);
}

std::uint64_t KrPerformanceTables::getTickRate()
{
    static const auto rate = static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
    return rate;
}
