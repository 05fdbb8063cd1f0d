#pragma once

/// @file
/// Which performance counters there are on a POSIX host, and how each is had from the tables.

#include <platform/performance.h>
#include <platform/posix/performanceTables.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What is counted at one collection, and what a share or a rate divides it by.
struct KrCounterSample
{
    std::uint64_t value = 0;
    std::uint64_t base = 1;
};

/// Whom a counter is about; only what its source tells is set.
struct KrCounterSubject
{
    const KrProcessorTimes* times = nullptr;
    const KrProcessorTable* processors = nullptr;
    const KrMemoryTable* memory = nullptr;
    const KrPagingTable* paging = nullptr;
    const KrProcessRecord* process = nullptr;
    const std::vector<KrProcessRecord>* processes = nullptr;
    const KrDiskRecord* disk = nullptr;
    std::uint64_t diskCount = 1; ///< how many disks are added up in `disk`
    std::uint64_t now = 0;       ///< when its table was read, in nanoseconds of the up time
};

enum class KrCounterSource
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

struct KrCounterDefinition
{
    const char* object;
    const char* name;
    KrCounterSource source;
    DWORD type;
    KrCounterSample (*take)(const KrCounterSubject& subject);
};

/// All of them, the counters of an object side by side.
const std::vector<KrCounterDefinition>& krCounterDefinitions();

/// Whether it counts of several things, which its path tells apart.
bool krHasInstances(KrCounterSource source);

/// The value by the latest sample or, of what needs two, by both.
/// @return the status of the value
DWORD krFormatCounter(DWORD type, const KrCounterSample& previous, const KrCounterSample& latest,
                      double& value);

/// A name as it stands in paths: what has a meaning there, or cannot be shown, is replaced.
std::string krToInstanceName(std::string name);

/// The instance that is all of them together.
inline constexpr std::string_view krTotalInstance = "_Total";

inline constexpr std::uint64_t krNanosecondsPerSecond = 1000000000;
