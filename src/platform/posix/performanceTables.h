#pragma once

/// @file
/// What the performance counters read of the kernel's tables. Ticks are those of `getTickRate`.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// How a processor's time was spent since the system's start, in ticks.
struct KrProcessorTimes
{
    unsigned number = 0; ///< the processor's; 0 for all of them together
    std::uint64_t user = 0;
    std::uint64_t nice = 0; ///< by processes of lower priority; no part of `user`
    std::uint64_t system = 0;
    std::uint64_t idle = 0;
    std::uint64_t ioWait = 0; ///< idle, too
    std::uint64_t interrupt = 0;
    std::uint64_t softInterrupt = 0;
    std::uint64_t stolen = 0; ///< by other virtual machines

    std::uint64_t getUser() const { return user + nice; }
    std::uint64_t getInterrupt() const { return interrupt + softInterrupt; }
    std::uint64_t getPrivileged() const { return system + getInterrupt(); }
    std::uint64_t getIdle() const { return idle + ioWait; }
    std::uint64_t getTotal() const { return getUser() + getPrivileged() + getIdle() + stolen; }
    std::uint64_t getBusy() const { return getTotal() - getIdle(); }
};

struct KrProcessorTable
{
    KrProcessorTimes all;
    std::vector<KrProcessorTimes> processors;
    std::uint64_t contextSwitches = 0;
};

/// In bytes.
struct KrMemoryTable
{
    std::uint64_t total = 0;
    std::uint64_t free = 0;
    std::uint64_t available = 0;
    std::uint64_t cached = 0;
    std::uint64_t committed = 0;
    std::uint64_t commitLimit = 0;
};

struct KrPagingTable
{
    std::uint64_t faults = 0;
    std::uint64_t pagesIn = 0;
    std::uint64_t pagesOut = 0;
};

struct KrProcessRecord
{
    int id = 0;
    std::string name; ///< at most 15 characters are kept by the kernel
    std::uint64_t parent = 0;
    std::uint64_t userTicks = 0;
    std::uint64_t systemTicks = 0;
    std::uint64_t runTime = 0; ///< user and system, in nanoseconds
    std::uint64_t faults = 0;
    std::uint64_t threads = 0;
    std::uint64_t startTicks = 0; ///< after the system's start
    std::uint64_t virtualBytes = 0;
    std::uint64_t residentPages = 0;
};

/// What was done with a disk since the system's start.
struct KrDiskRecord
{
    std::string name;
    std::uint64_t reads = 0;
    std::uint64_t readSectors = 0; ///< of 512 bytes, whatever the disk's are
    std::uint64_t writes = 0;
    std::uint64_t writtenSectors = 0;
    std::uint64_t pending = 0;
    std::uint64_t busyMilliseconds = 0;
};

/// Each takes the text of a table; false if it is malformed.
bool krParseProcessors(std::string_view text, KrProcessorTable& table);
bool krParseMemory(std::string_view text, KrMemoryTable& table);
bool krParsePaging(std::string_view text, KrPagingTable& table);
bool krParseProcess(std::string_view text, KrProcessRecord& record);
bool krParseDisks(std::string_view text, std::vector<KrDiskRecord>& disks);

/// The tables, each read when it is first asked for after `begin`.
class KrPerformanceTables
{
public:
    enum State
    {
        good,
        unreadable,
        malformed
    };

    /// A table as it is now, or why it is not known.
    template <class Record>
    struct Table
    {
        Record record;
        State state = unreadable;
        bool isRead = false;
        std::uint64_t time = 0; ///< of the reading, as `getUpTime`
    };

    /// @param processes where the kernel has its tables
    /// @param devices where it has the list of its block devices
    explicit KrPerformanceTables(std::string processes = "/proc",
                                 std::string devices = "/sys/block");

    /// From here on the tables are read anew.
    void begin();

    const Table<KrProcessorTable>& getProcessors();
    const Table<KrMemoryTable>& getMemory();
    const Table<KrPagingTable>& getPaging();
    /// All processes, in the order of their numbers.
    const Table<std::vector<KrProcessRecord>>& getProcesses();
    /// The disks that are devices of their own: no partitions, no disks in memory or in files.
    const Table<std::vector<KrDiskRecord>>& getDisks();

    /// One process, refined; unreadable if there is none of that number.
    State readProcess(int id, KrProcessRecord& record);
    /// Sets its time to the nanosecond, if the kernel tells that; else it stays in whole ticks.
    static void refine(KrProcessRecord& record);

    /// Since the system's start, in nanoseconds.
    static std::uint64_t getUpTime();
    static std::uint64_t getTickRate(); ///< per second

private:
    bool readText(const std::string& path);
    State readRecord(int id, KrProcessRecord& record);
    State readProcesses(std::vector<KrProcessRecord>& processes);
    State readDisks(std::vector<KrDiskRecord>& disks);

    /// Has the table read, if that has not been done.
    template <class Record, class Read>
    const Table<Record>& once(Table<Record>& table, Read read);
    template <class Record>
    const Table<Record>& once(Table<Record>& table, const char* file,
                              bool (*parse)(std::string_view, Record&));

    const std::string _processes;
    const std::string _devices;
    std::string _path;
    std::string _text; ///< of the table that was read last
    std::vector<int> _ids;
    Table<KrProcessorTable> _processorTable;
    Table<KrMemoryTable> _memoryTable;
    Table<KrPagingTable> _pagingTable;
    Table<std::vector<KrProcessRecord>> _processTable;
    Table<std::vector<KrDiskRecord>> _diskTable;
};
