#include <base/internal/log/lgThread.h>

namespace Kr
{

LgThread::OutputGuard::OutputGuard()
{
    LgThread& self = get();
    if (self.queue != nullptr)
        _suppress.emplace(*self.queue);
    self.isInOutput = true;
}

} // namespace Kr
