#include <base/prCatalog.h>
#include <base/prEx.h>
#include <base/raise.h>

#include <platform/performance.h>

namespace Kr
{

namespace
{

[[noreturn]] void raiseStatus(DWORD status)
{
    raise<PrEx::ExSystem>(KR_HERE, static_cast<unsigned long>(status),
                          krDescribeCounterStatus(status).c_str());
}

} // namespace

Vector<std::string> PrCatalog::performListObjects()
{
    Vector<std::string> objects;
    const PDH_STATUS status = krListCounterObjects(objects);
    if (status != ERROR_SUCCESS)
        raiseStatus(static_cast<DWORD>(status));
    return objects;
}

/// Returns false if there is no such object.
bool PrCatalog::performListItems(const std::string& object, Items& items)
{
    const PDH_STATUS status = krListCounterItems(object, items.counters, items.instances);
    if (static_cast<DWORD>(status) == PDH_CSTATUS_NO_OBJECT)
        return false;
    if (status != ERROR_SUCCESS)
        raiseStatus(static_cast<DWORD>(status));
    return !items.counters.empty();
}

} // namespace Kr
