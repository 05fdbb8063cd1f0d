#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::initArg>;

static Kr::InInit<KrInit::initArg> package;

void KrInit::initArg::start()
{
}

void KrInit::initArg::stop()
{
}
