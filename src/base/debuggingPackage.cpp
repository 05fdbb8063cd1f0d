#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::debugging>;

static Kr::InInit<KrInit::debugging> package;

void KrInit::debugging::start()
{
}

void KrInit::debugging::stop()
{
}
