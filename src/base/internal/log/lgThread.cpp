#include <base/internal/log/lgThread.h>

namespace Kr
{

namespace
{

thread_local LgThread thread;

} // namespace

LgThread& LgThread::get() noexcept
{
    return thread;
}

LgThread::OutputGuard::OutputGuard()
{
    LgThread& self = get();
    if (self.queue != nullptr)
        _suppress.emplace(*self.queue);
    self.isInOutput = true;
}

} // namespace Kr
