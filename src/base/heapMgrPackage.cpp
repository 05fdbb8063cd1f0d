#include <base/hmHeapMgr.h>
#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::heapMgr>;

static Kr::InInit<KrInit::heapMgr> package;

void KrInit::heapMgr::start()
{
    Kr::InSingleton<Kr::HmHeapMgr>::initialize(Kr::HmHeapMgr::create());
}

void KrInit::heapMgr::stop()
{
    Kr::InSingleton<Kr::HmHeapMgr>::destroy();
}
