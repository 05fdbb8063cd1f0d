#include <base/inContextAliasMgrBase.h>

namespace Kr
{

Vector<char*>& InContextAliasMgrBase::args()
{
    static Vector<char*> arguments;
    return arguments;
}

} // namespace Kr
