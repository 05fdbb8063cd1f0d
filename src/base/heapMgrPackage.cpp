#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::heapMgr>;

static Kr::InInit<KrInit::heapMgr> package;

void KrInit::heapMgr::start()
{
}

void KrInit::heapMgr::stop()
{
}
