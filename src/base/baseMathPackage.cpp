#include <base/inInit.imp>
#include <base/krInitPackages.h>

template class Kr::InInit<KrInit::baseMath>;

static Kr::InInit<KrInit::baseMath> package;

void KrInit::baseMath::start()
{
}

void KrInit::baseMath::stop()
{
}
