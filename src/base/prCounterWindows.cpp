#include <base/prCounter.h>

#include <platform/performance.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace Kr
{

namespace
{

/// What the system answers about a counter of two collections that has only one, or none that goes
/// with the other.
constexpr DWORD incomplete[] = {PDH_NO_DATA,
                                PDH_CALC_NEGATIVE_DENOMINATOR,
                                PDH_CALC_NEGATIVE_TIMEBASE,
                                PDH_CALC_NEGATIVE_VALUE,
                                PDH_CSTATUS_INVALID_DATA,
                                PDH_INVALID_DATA};

bool isGood(DWORD status) noexcept
{
    return status == PDH_CSTATUS_VALID_DATA || status == PDH_CSTATUS_NEW_DATA;
}

bool isIncomplete(DWORD status) noexcept
{
    return std::find(std::begin(incomplete), std::end(incomplete), status) != std::end(incomplete);
}

/// Sets the value and returns 0, or returns the status that says why there is none.
DWORD readValue(void* handle, double& value) noexcept
{
    DWORD status = 0;
    const auto result = static_cast<DWORD>(krGetCounterValue(handle, status, value));
    if (isGood(result) && isGood(status))
        return ERROR_SUCCESS;
    return isGood(status) ? result : status;
}

} // namespace

bool PrCounter::performAskIfRate(void* handle) noexcept
{
    alignas(PDH_COUNTER_INFO_A) char room[4096];
    auto* const info = reinterpret_cast<PDH_COUNTER_INFO_A*>(room);
    DWORD size = sizeof room;
    if (PdhGetCounterInfoA(handle, 0, &size, info) != ERROR_SUCCESS)
        return false;
    return (info->dwType & PERF_DELTA_COUNTER) != 0 || info->dwType == PERF_AVERAGE_TIMER ||
           info->dwType == PERF_AVERAGE_BULK;
}

void PrCounter::performRelease(void* handle) noexcept
{
    PdhRemoveCounter(handle);
}

void PrCounter::performUpdate() noexcept
{
    _systemStatus = readValue(_handle, _value);
    if (_systemStatus == ERROR_SUCCESS)
        _status = Available;
    else if (_systemStatus == PDH_CSTATUS_NO_INSTANCE || _systemStatus == PDH_CSTATUS_NO_OBJECT)
        _status = NoInstance;
    else
        _status = _isRate && isIncomplete(static_cast<DWORD>(_systemStatus)) ? FirstOfTwo : Failed;
    double identity = 0.;
    if (_identity != nullptr)
        keepTo(readValue(_identity, identity) == ERROR_SUCCESS ? identity : -1.);
}

std::string PrCounter::performDescribe() const
{
    std::string text = krDescribeCounterStatus(static_cast<DWORD>(_systemStatus));
    while (!text.empty() && text.back() == '.')
        text.pop_back();
    char status[32];
    std::snprintf(status, sizeof status, " (status 0x%08lx)", _systemStatus);
    return text + status;
}

} // namespace Kr
