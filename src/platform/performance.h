#pragma once

/// @file
/// The calls of the performance counters.
///
/// On Windows they are the system's; their library is loaded by the first of them, so that a
/// program that asks for no counter does not pay for it. Elsewhere `posix/performance.cpp` answers
/// the subset about processors, memory, processes and disks from the tables of a Linux kernel.
/// Names are English on every system, and paths have the form "\Object(instance)\Counter".

#include <platform/platform.h>

#include <string>
#include <vector>

#if defined(_WIN32)

#include <pdh.h>
#include <pdhmsg.h>

#else

using PDH_STATUS = LONG;
using PDH_HQUERY = HANDLE;
using PDH_HCOUNTER = HANDLE;
using BOOLEAN = unsigned char;

constexpr DWORD PDH_CSTATUS_VALID_DATA = 0;
constexpr DWORD PDH_CSTATUS_NEW_DATA = 1;
constexpr DWORD PDH_CSTATUS_NO_INSTANCE = 0x800007D1;
constexpr DWORD PDH_MORE_DATA = 0x800007D2;
constexpr DWORD PDH_NO_DATA = 0x800007D5;
constexpr DWORD PDH_CALC_NEGATIVE_DENOMINATOR = 0x800007D6;
constexpr DWORD PDH_CALC_NEGATIVE_TIMEBASE = 0x800007D7;
constexpr DWORD PDH_CALC_NEGATIVE_VALUE = 0x800007D8;
constexpr DWORD PDH_CSTATUS_NO_OBJECT = 0xC0000BB8;
constexpr DWORD PDH_CSTATUS_NO_COUNTER = 0xC0000BB9;
constexpr DWORD PDH_CSTATUS_INVALID_DATA = 0xC0000BBA;
constexpr DWORD PDH_MEMORY_ALLOCATION_FAILURE = 0xC0000BBB;
constexpr DWORD PDH_INVALID_HANDLE = 0xC0000BBC;
constexpr DWORD PDH_INVALID_ARGUMENT = 0xC0000BBD;
constexpr DWORD PDH_CSTATUS_BAD_COUNTERNAME = 0xC0000BC0;
constexpr DWORD PDH_INVALID_DATA = 0xC0000BC6;
constexpr DWORD PDH_UNKNOWN_LOG_FORMAT = 0xC0000BD6; ///< here: a table that cannot be understood
constexpr DWORD PDH_FILE_NOT_FOUND = 0xC0000BD1;     ///< here: a table that cannot be read

constexpr DWORD PDH_FMT_DOUBLE = 0x200;
constexpr DWORD PDH_FMT_NOSCALE = 0x1000;  ///< takes no effect: nothing is scaled
constexpr DWORD PDH_FMT_NOCAP100 = 0x8000; ///< a share above 100 % stays what it is

// The kinds of counters that there are here.
constexpr DWORD PERF_COUNTER_LARGE_RAWCOUNT = 0x00010100;
constexpr DWORD PERF_RAW_FRACTION = 0x20020400;
constexpr DWORD PERF_COUNTER_BULK_COUNT = 0x10410500; ///< a rate per second
constexpr DWORD PERF_100NSEC_TIMER = 0x20510500;      ///< a share of time, in per cent
constexpr DWORD PERF_ELAPSED_TIME = 0x30240500;       ///< in seconds
constexpr DWORD PERF_AVERAGE_TIMER = 0x30020400;      ///< not here
constexpr DWORD PERF_AVERAGE_BULK = 0x40020500;       ///< not here
constexpr DWORD PERF_DELTA_COUNTER = 0x00400000;      ///< the bit of what needs two collections

struct PDH_FMT_COUNTERVALUE
{
    DWORD CStatus;
    double doubleValue;
};

struct PDH_COUNTER_INFO_A
{
    DWORD dwLength;
    DWORD dwType;
};

/// @param source null, the system itself
PDH_STATUS PdhOpenQueryA(const char* source, DWORD_PTR user, PDH_HQUERY* query) noexcept;

/// Adds the counter of a path, in any case of its letters. Whether there is such an instance shows
/// when the query is collected.
PDH_STATUS PdhAddEnglishCounterA(PDH_HQUERY query, const char* path, DWORD_PTR user,
                                 PDH_HCOUNTER* counter) noexcept;
PDH_STATUS PdhRemoveCounter(PDH_HCOUNTER counter) noexcept;

/// Reads each table that a counter of the query needs, once.
PDH_STATUS PdhCollectQueryData(PDH_HQUERY query) noexcept;

/// The value by the last collection or, of what needs two, by the last two. An instance of
/// processes is sought anew at each collection, unless the process that it was is still alive.
PDH_STATUS PdhGetFormattedCounterValue(PDH_HCOUNTER counter, DWORD format, DWORD* type,
                                       PDH_FMT_COUNTERVALUE* value) noexcept;

/// Only the type.
PDH_STATUS PdhGetCounterInfoA(PDH_HCOUNTER counter, BOOLEAN withText, DWORD* size,
                              PDH_COUNTER_INFO_A* info) noexcept;
PDH_STATUS PdhCloseQuery(PDH_HQUERY query) noexcept;

#endif

/// The names of the objects that the system has counters of.
PDH_STATUS krListCounterObjects(std::vector<std::string>& objects);

/// What an object counts, and of what; no instances if it is only one thing. Instances of one name
/// stand there several times.
PDH_STATUS krListCounterItems(const std::string& object, std::vector<std::string>& counters,
                              std::vector<std::string>& instances);

/// The value of a counter of a query that has been collected: the system's call, in the one format
/// that the library uses.
PDH_STATUS krGetCounterValue(PDH_HCOUNTER counter, DWORD& status, double& value) noexcept;

/// The system's text for a status of these calls.
std::string krDescribeCounterStatus(DWORD status);
