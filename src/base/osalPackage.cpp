#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::osal>;

static Kr::InInit<KrInit::osal> package;

void KrInit::osal::start()
{
}

void KrInit::osal::stop()
{
}
