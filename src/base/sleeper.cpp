#include <base/sleeper.h>

#include <base/inSingleton.imp>

template class Kr::InSingleton<Kr::Sleeper>;

namespace Kr
{

Sleeper::~Sleeper() = default;

Sleeper& Sleeper::getInstance()
{
    Sleeper* const sleeper = InSingleton<Sleeper>::getInstance();
    sleeper->prepareThread();
    return *sleeper;
}

} // namespace Kr
