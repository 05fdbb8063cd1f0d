#include <base/trace.h>

#include <base/internal/errors/demangle.h>
#include <base/internal/errors/fixedText.h>
#include <base/internal/errors/raiseHistory.h>
#include <base/internal/errors/traceOptions.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <ostream>

namespace Kr
{

namespace
{

// Everything in this file is constant-initialised and has no destructor that runs, so that static
// objects of any library can raise in their constructors and destructors.

/// Keeps the built-in trace from being destroyed.
union Immortal
{
    constexpr Immortal() noexcept
        : trace()
    {
    }
    ~Immortal() {} // NOLINT: a defaulted one would be deleted

    Trace trace;
};

Immortal builtIn;
std::atomic<Trace*> installed{&builtIn.trace};
TraceManager manager;

} // namespace

Trace::~Trace()
{
    Trace* self = this;
    installed.compare_exchange_strong(self, &builtIn.trace);
}

void Trace::printException(const ExBase& exception, const char* file, int line) noexcept
{
    if (!TraceOptions::arePrinting())
        return;
    const int error = errno;
    std::fprintf(stderr, "Raise at %s:%d: %s\n", orEmpty(file), line,
                 exception.getDetailedReason());
    errno = error;
}

TraceManager& TraceManager::getInstance() noexcept
{
    return manager;
}

Trace& TraceManager::getTrace() const noexcept
{
    return *installed.load(std::memory_order_acquire);
}

Trace& TraceManager::setTrace(Trace& trace) noexcept
{
    return *installed.exchange(&trace, std::memory_order_acq_rel);
}

void TraceManager::reportException(const ExBase& exception, const char* file, int line) noexcept
{
    RaiseHistory::record(exception);
    // Read here already: a program's own trace need not call the built-in one for the history to be
    // listed and a misspelt word to be reported.
    static_cast<void>(TraceOptions::arePrinting());
    getTrace().printException(exception, file, line);
}

void TraceManager::visitRaises(RaiseVisitor visitor, void* context) const
{
    RaiseHistory::visit(visitor, context);
}

void TraceManager::listRaises(std::ostream& os) const
{
    const auto write = [](const Raise& raise, void* stream)
    {
        RaiseHistory::Line line;
        const std::size_t length = RaiseHistory::format(line, raise, demangle(raise.type).c_str());
        static_cast<std::ostream*>(stream)->write(line, static_cast<std::streamsize>(length));
    };
    visitRaises(write, &os);
}

void reportRaise(const ExBase& exception, const char* file, int line) noexcept
{
    manager.reportException(exception, file, line);
}

} // namespace Kr
