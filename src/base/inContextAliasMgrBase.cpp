#include <base/inContextAliasMgrBase.h>

#include <base/internal/init/inCommandLine.h>

namespace Kr
{

Vector<char*>& InContextAliasMgrBase::args()
{
    return InCommandLine::getInstance().getWords();
}

Vector<char*> InContextAliasMgrBase::getRemainingWords()
{
    return InCommandLine::getInstance().getRemainingWords();
}

} // namespace Kr
