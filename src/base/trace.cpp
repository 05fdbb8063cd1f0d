#include <base/trace.h>

namespace Kr
{

Trace::~Trace() = default;

void Trace::printException(const ExBase&, const char*, int) noexcept
{
}

TraceManager& TraceManager::getInstance() noexcept
{
    static TraceManager manager;
    return manager;
}

Trace& TraceManager::getTrace() noexcept
{
    static Trace trace;
    return trace;
}

Trace& TraceManager::setTrace(Trace&) noexcept
{
    return getTrace();
}

void TraceManager::reportException(const ExBase& exception, const char* file, int line) noexcept
{
    getTrace().printException(exception, file, line);
}

} // namespace Kr
