#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::initVars>;

static Kr::InInit<KrInit::initVars> package;

void KrInit::initVars::start()
{
}

void KrInit::initVars::stop()
{
}
