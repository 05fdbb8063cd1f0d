#include <base/inInit.imp>
#include <base/krInitPackages.h>
#include <base/lgGroups.h>

template class Kr::InInit<KrInit::logger>;

static Kr::InInit<KrInit::logger> package;

void KrInit::logger::start()
{
    Kr::LgMajorGroup::initializeFromEnvironment();
}

void KrInit::logger::stop()
{
    Kr::LgMajorGroup::finalize();
}
