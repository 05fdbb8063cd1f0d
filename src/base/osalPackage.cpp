#include <base/inInit.imp>
#include <base/krInitPackages.h>
#include <base/osCpuInfo.h>
#include <base/osMemoryArch.h>

template class Kr::InInit<KrInit::osal>;

static Kr::InInit<KrInit::osal> package;

void KrInit::osal::start()
{
    Kr::OsCpuInfo::initialize();
    Kr::OsMemoryArch::getInstance();
}

void KrInit::osal::stop()
{
    Kr::OsCpuInfo::finalize();
}
