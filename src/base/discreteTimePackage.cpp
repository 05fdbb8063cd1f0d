#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::discreteTime>;

static Kr::InInit<KrInit::discreteTime> package;

void KrInit::discreteTime::start()
{
}

void KrInit::discreteTime::stop()
{
}
