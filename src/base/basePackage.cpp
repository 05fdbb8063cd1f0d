#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::base>;

static Kr::InInit<KrInit::base> package;

void KrInit::base::start()
{
}

void KrInit::base::stop()
{
}
