#include <base/inInit.imp>
#include <base/krInitPackages.h>
#include <base/lgLog.h>

template class Kr::InInit<KrInit::logger>;

static Kr::InInit<KrInit::logger> package;

void KrInit::logger::start()
{
    Kr::LgLog::init();
}

void KrInit::logger::stop()
{
    Kr::LgLog::destroy();
}
