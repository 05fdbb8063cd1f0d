#include <base/hmHeapMgr.h>
#include <base/hmLedger.h>
#include <base/inInit.imp>
#include <base/krInitPackages.h>
#include <base/lgCounters.h>

#include <string>

template class Kr::InInit<KrInit::heapMgr>;

static Kr::InInit<KrInit::heapMgr> package;

namespace
{

/// The ledger as curves of the timeline.
void tellAccounts(Kr::LgCounters::Add add, void* timeline)
{
    for (const Kr::HmLedger::Account& account : Kr::HmLedger::getAccounts())
        add(timeline, ("heap: " + account.package).c_str(), static_cast<double>(account.bytes));
}

} // namespace

void KrInit::heapMgr::start()
{
    if (Kr::HmLedger::isActive())
        Kr::LgCounters::addSource(&tellAccounts);
    Kr::InSingleton<Kr::HmHeapMgr>::initialize(Kr::HmHeapMgr::create());
}

void KrInit::heapMgr::stop()
{
    Kr::LgCounters::removeSource(&tellAccounts);
    Kr::InSingleton<Kr::HmHeapMgr>::destroy();
}
