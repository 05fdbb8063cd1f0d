#include <base/inInit.imp>
#include <base/krInitPackages.h>
#include <base/sleeper.h>

template class Kr::InInit<KrInit::profiling>;

static Kr::InInit<KrInit::profiling> package;

void KrInit::profiling::start()
{
    Kr::InSingleton<Kr::Sleeper>::initialize(Kr::Sleeper::create());
}

void KrInit::profiling::stop()
{
    Kr::InSingleton<Kr::Sleeper>::destroy();
}
