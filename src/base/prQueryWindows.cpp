#include <base/prQuery.h>

#include <base/prEx.h>
#include <base/raise.h>

#include <platform/performance.h>

namespace Kr
{

namespace
{

void check(PDH_STATUS status)
{
    const auto code = static_cast<DWORD>(status);
    if (code != ERROR_SUCCESS)
        raise<PrEx::ExSystem>(KR_HERE, static_cast<unsigned long>(code),
                              krDescribeCounterStatus(code).c_str());
}

} // namespace

void* PrQuery::performOpen()
{
    PDH_HQUERY query = nullptr;
    check(PdhOpenQueryA(nullptr, 0, &query));
    return query;
}

void PrQuery::performClose(void* query) noexcept
{
    PdhCloseQuery(query);
}

/// Returns null if the system does not know the counter.
void* PrQuery::performAdd(void* query, const PrPath& path)
{
    PDH_HCOUNTER counter = nullptr;
    const PDH_STATUS status = PdhAddEnglishCounterA(query, path.toString().c_str(), 0, &counter);
    switch (static_cast<DWORD>(status))
    {
    case PDH_CSTATUS_NO_OBJECT:
    case PDH_CSTATUS_NO_COUNTER:
    case PDH_CSTATUS_NO_INSTANCE:
    case PDH_CSTATUS_BAD_COUNTERNAME:
        return nullptr;
    default:
        check(status);
        return counter;
    }
}

/// Data that is missing is for each counter to tell.
void PrQuery::performCollect(void* query)
{
    const PDH_STATUS status = PdhCollectQueryData(query);
    switch (static_cast<DWORD>(status))
    {
    case PDH_NO_DATA:
    case PDH_CSTATUS_NO_INSTANCE:
    case PDH_CSTATUS_NO_OBJECT:
    case PDH_CSTATUS_NO_COUNTER:
    case PDH_CSTATUS_INVALID_DATA:
        break;
    default:
        check(status);
    }
}

} // namespace Kr
