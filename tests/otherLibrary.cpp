#include "otherLibrary.h"

#include <base/inSingleton.imp>

template class Kr::InSingleton<Other::Service>;

namespace Other
{

ExOther::ExOther(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Other.");
}

void raiseOther()
{
    Kr::raise<ExOther>(KR_HERE);
}

Service* getServiceInLibrary()
{
    return Kr::InSingleton<Service>::getInstance();
}

} // namespace Other
