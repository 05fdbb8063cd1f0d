#include <base/internal/testing/testHoldings.h>

#include <base/hmLedger.h>

#include <algorithm>

namespace Kr
{

TestHoldings TestHoldings::count()
{
    const HmLedger::Scope scope(account);
    TestHoldings now;
    for (const HmLedger::Account& each : HmLedger::getAccounts())
        if (each.package != account)
        {
            now._blocks += static_cast<std::int64_t>(each.blocks);
            now._bytes += static_cast<std::int64_t>(each.bytes);
        }
    now._handles = performCountHandles();
    return now;
}

TestLeak TestHoldings::since(const TestHoldings& earlier) const noexcept
{
    TestLeak leak;
    if (_blocks > earlier._blocks)
    {
        leak.blocks = _blocks - earlier._blocks;
        leak.bytes = std::max<std::int64_t>(0, _bytes - earlier._bytes);
    }
    leak.handles = std::max<std::int64_t>(0, _handles - earlier._handles);
    return leak;
}

} // namespace Kr
