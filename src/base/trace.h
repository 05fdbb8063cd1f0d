#pragma once

/// @file
/// The trace: it sees every exception before it is raised.
///
/// Raise with `Kr::raise`, so that no raise forgets the trace:
/// @code
/// Kr::raise(Viewer::ExNoDisplay(KR_HERE));
/// @endcode

#include <base/exBase.h>
#include <base/krBaseApi.h>
#include <base/sourcePosition.h>

namespace Kr
{

/// Receives every exception, before it is thrown, with the position of the raise. May be called by
/// any thread at any time, also during static destruction.
class KR_BASE_API Trace
{
public:
    virtual ~Trace();

    /// Must return normally.
    virtual void printException(const ExBase& exception, const char* file, int line) noexcept;
};

/// The process's one trace.
class KR_BASE_API TraceManager
{
public:
    static TraceManager& getInstance() noexcept;

    Trace& getTrace() noexcept;

    /// Installs a trace and returns the previous one. The manager does not own either.
    Trace& setTrace(Trace& trace) noexcept;

    /// What `raise` does before it throws: keeps the raise in the history, then hands it to the
    /// trace.
    void reportException(const ExBase& exception, const char* file, int line) noexcept;
};

/// Hands the exception to the trace, with the given position, and throws a copy of it.
template <class Exception>
[[noreturn]] void raise(const Exception& exception, const char* file, int line)
{
    TraceManager::getInstance().reportException(exception, file, line);
    throw exception;
}

/// The same with the exception's own position.
template <class Exception>
[[noreturn]] void raise(const Exception& exception)
{
    raise(exception, exception.getFileName(), exception.getLineNo());
}

} // namespace Kr
