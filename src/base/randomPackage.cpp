#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::random>;

static Kr::InInit<KrInit::random> package;

void KrInit::random::start()
{
}

void KrInit::random::stop()
{
}
