// Stands for the system's library of performance counters, in German: a small catalogue that grows
// while it is being listed, and counters whose values follow a script.

#include <algorithm>
#include <cstring>
#include <string>

#include <windows.h>

#include <pdh.h>
#include <pdhmsg.h>

namespace
{

using namespace std::literals;

/// Of what the catalogue holds; the English names of the numbers are the test's.
struct Name
{
    DWORD number;
    const char* local;
};

constexpr Name names[] = {
    {4, "Speicher"}, {24, "Verfuegbare Bytes"}, {230, "Prozess"}, {784, "Kennung"}, {7, "Groesse"},
    {8, "Groesse"},
};

struct Object
{
    const char* local;
    std::string counters;
    std::string instances;
    PDH_STATUS status;
};

constexpr PDH_STATUS good = ERROR_SUCCESS;
const Object objects[] = {
    {"Speicher", "Verfuegbare Bytes\0Groesse\0"s, "", good},
    {"Prozess", "Kennung\0Eigenes\0"s, "viewer\0viewer\0_Total\0"s, good},
    {"Eigene Anwendung", "Dreiecke/s\0"s, "", good},
    {"Kaputt", "", "", static_cast<PDH_STATUS>(PDH_CSTATUS_NO_MACHINE)},
    {"Endlos", "", "", static_cast<PDH_STATUS>(PDH_MORE_DATA)},
};

/// A counter with what comes of it, one collection after the other; then the last again.
struct Counter
{
    const char* path;
    DWORD type;
    DWORD status[3];
    double values[3];
};

const Counter counters[] = {
    {R"(\Memory\Available Bytes)", PERF_COUNTER_LARGE_RAWCOUNT, {}, {1e10, 2e10, 0.5}},
    {R"(\Process(viewer)\% Processor Time)",
     PERF_100NSEC_TIMER,
     {PDH_CSTATUS_INVALID_DATA, PDH_CALC_NEGATIVE_DENOMINATOR, PDH_CSTATUS_NEW_DATA},
     {0., 0., 250.}},
    {R"(\Process(viewer)\ID Process)", PERF_COUNTER_RAWCOUNT, {}, {7., 7., 7.}},
    {R"(\Process(viewer#1)\Working Set)",
     PERF_COUNTER_LARGE_RAWCOUNT,
     {PDH_CSTATUS_NO_INSTANCE, PDH_CSTATUS_VALID_DATA, PDH_ACCESS_DENIED},
     {0., 4096., 0.}},
};

struct Handle
{
    const Counter* counter;
};

int collections = 0;
int openHandles = 0;

bool isSame(const char* lhs, const char* rhs)
{
    return lstrcmpiA(lhs, rhs) == 0;
}

/// Gives a list of texts: the size alone, that there is more by now, or all.
PDH_STATUS give(const std::string& list, char* buffer, DWORD* size)
{
    const auto needed = static_cast<DWORD>(list.size() + 1);
    const DWORD said =
        *size == 0 && needed > 8 ? needed - 8 : needed; // some come after the question
    if (*size < needed)
    {
        *size = said;
        return static_cast<PDH_STATUS>(PDH_MORE_DATA);
    }
    std::memcpy(buffer, list.c_str(), needed);
    *size = needed;
    return good;
}

} // namespace

#define FAKE extern "C" __declspec(dllexport) PDH_STATUS WINAPI

FAKE PdhEnumObjectsA(LPCSTR, LPCSTR, LPSTR list, LPDWORD size, DWORD, WINBOOL)
{
    std::string all;
    for (const Object& object : objects)
        all.append(object.local).push_back('\0');
    return give(all, list, size);
}

FAKE PdhEnumObjectItemsA(LPCSTR, LPCSTR, LPCSTR name, LPSTR counterList, LPDWORD counterSize,
                         LPSTR instanceList, LPDWORD instanceSize, DWORD, DWORD)
{
    for (const Object& object : objects)
    {
        if (!isSame(object.local, name))
            continue;
        if (object.status != good)
            return object.status;
        const PDH_STATUS first = give(object.counters, counterList, counterSize);
        const PDH_STATUS second = give(object.instances, instanceList, instanceSize);
        return first != good ? first : second;
    }
    return static_cast<PDH_STATUS>(PDH_CSTATUS_NO_OBJECT);
}

FAKE PdhLookupPerfIndexByNameA(LPCSTR, LPCSTR name, LPDWORD number)
{
    for (const Name& each : names)
        if (isSame(each.local, name))
        {
            *number = each.number;
            return good;
        }
    return static_cast<PDH_STATUS>(PDH_STRING_NOT_FOUND);
}

FAKE PdhLookupPerfNameByIndexA(LPCSTR, DWORD number, LPSTR name, LPDWORD)
{
    for (const Name& each : names)
        if (each.number == number)
        {
            lstrcpyA(name, each.local);
            return good;
        }
    return static_cast<PDH_STATUS>(PDH_STRING_NOT_FOUND);
}

FAKE PdhOpenQueryA(LPCSTR, DWORD_PTR, PDH_HQUERY* query)
{
    *query = &collections;
    collections = 0;
    ++openHandles;
    return good;
}

FAKE PdhCloseQuery(PDH_HQUERY)
{
    --openHandles;
    return good;
}

FAKE PdhAddEnglishCounterA(PDH_HQUERY, LPCSTR path, DWORD_PTR, PDH_HCOUNTER* handle)
{
    for (const Counter& counter : counters)
        if (isSame(counter.path, path))
        {
            *handle = new Handle{&counter};
            ++openHandles;
            return good;
        }
    return static_cast<PDH_STATUS>(PDH_CSTATUS_NO_COUNTER);
}

FAKE PdhRemoveCounter(PDH_HCOUNTER handle)
{
    delete static_cast<Handle*>(handle);
    --openHandles;
    return good;
}

/// The fourth fails as a whole.
FAKE PdhCollectQueryData(PDH_HQUERY)
{
    ++collections;
    const DWORD answers[] = {PDH_NO_DATA, ERROR_SUCCESS, ERROR_SUCCESS,
                             PDH_MEMORY_ALLOCATION_FAILURE};
    return static_cast<PDH_STATUS>(answers[collections - 1]);
}

FAKE PdhGetFormattedCounterValue(PDH_HCOUNTER handle, DWORD, LPDWORD, PPDH_FMT_COUNTERVALUE value)
{
    const Counter& counter = *static_cast<Handle*>(handle)->counter;
    value->CStatus = counter.status[collections - 1];
    value->doubleValue = counter.values[collections - 1];
    const bool isGood = value->CStatus <= PDH_CSTATUS_NEW_DATA;
    return isGood ? good : static_cast<PDH_STATUS>(PDH_INVALID_DATA);
}

FAKE PdhGetCounterInfoA(PDH_HCOUNTER handle, BOOLEAN, LPDWORD, PPDH_COUNTER_INFO_A info)
{
    info->dwType = static_cast<Handle*>(handle)->counter->type;
    return good;
}

/// What has been opened and not closed.
extern "C" __declspec(dllexport) int getOpenHandles()
{
    return openHandles;
}
