#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::logger>;

static Kr::InInit<KrInit::logger> package;

void KrInit::logger::start()
{
}

void KrInit::logger::stop()
{
}
