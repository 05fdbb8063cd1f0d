#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::profiling>;

static Kr::InInit<KrInit::profiling> package;

void KrInit::profiling::start()
{
}

void KrInit::profiling::stop()
{
}
