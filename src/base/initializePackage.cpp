#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::initialize>;

static Kr::InInit<KrInit::initialize> package;

void KrInit::initialize::start()
{
}

void KrInit::initialize::stop()
{
}
