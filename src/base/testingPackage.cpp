#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::testing>;

static Kr::InInit<KrInit::testing> package;

void KrInit::testing::start()
{
}

void KrInit::testing::stop()
{
}
