#pragma once

/// @file
/// The trace, which sees every exception before it is thrown (raise.h), and the last raises.
///
/// What the built-in trace does is set by the environment variable `KR_TRACE_OPTIONS`, which is
/// read once, at the first raise. It holds words separated by commas, with or without blanks:
///
/// | word         | effect                                                                       |
/// |--------------|------------------------------------------------------------------------------|
/// | `none`       | nothing, as when the variable is not set                                     |
/// | `exceptions` | prints every exception with its detailed reason on standard error            |
/// | `history`    | lists the last raises on standard error when the program terminates through  |
/// |              | `std::terminate`, as it does for an exception that nobody catches            |
///
/// An unknown word is reported on standard output, once and at once, and skipped.
///
/// Whatever the options, the last 32 raises are kept. A program lists them where it reports that
/// something went wrong:
/// @code
/// try
/// {
///     std::stoi("no number");
/// }
/// catch (const std::exception& error)
/// {
///     std::cerr << error.what() << "; before that:\n";
///     Kr::TraceManager::getInstance().listRaises(std::cerr);
/// }
/// @endcode
/// Nothing here is ever constructed or destroyed at run time, so exceptions can be raised by static
/// objects too, early and late. Nothing locks, allocates or throws, and any thread may call it.

#include <base/exBase.h>
#include <base/krBaseApi.h>
#include <base/raise.h>
#include <base/traceRaise.h>

#include <iosfwd>

namespace Kr
{

/// Receives every exception, before it is thrown, with the position of the raise. This class is the
/// built-in trace; a program derives from it to see the exceptions itself:
/// @code{.cpp}
/// #include <atomic>
///
/// class CountingTrace : public Kr::Trace
/// {
/// public:
///     void printException(const Kr::ExBase& exception, const char* file,
///                         int line) noexcept override
///     {
///         ++count;
///         Trace::printException(exception, file, line);
///     }
///     std::atomic<int> count{0};
/// };
/// @endcode
/// Pitfalls: it is called by any thread at any time, by several at once, also while static objects
/// are destroyed. An operation that raises again from within calls itself without end. The word
/// `exceptions` takes effect in the built-in `printException`, so call it, as above, to keep it.
class KR_BASE_API Trace
{
public:
    constexpr Trace() noexcept = default;
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;
    /// Destroying the installed trace puts the built-in one back.
    virtual ~Trace();

    /// Does what `KR_TRACE_OPTIONS` asks for. `errno` is left as it was. Printing formats, and so
    /// freezes, the exception's detailed reason.
    virtual void printException(const ExBase& exception, const char* file, int line) noexcept;
};

/// The process's one trace, and its memory of the last raises.
class KR_BASE_API TraceManager : public TraceHistorySizes
{
public:
    using Raise = TraceRaise;
    using RaiseVisitor = TraceRaise::Visitor;

    static TraceManager& getInstance() noexcept;

    Trace& getTrace() const noexcept;

    /// Installs a trace and returns the previous one. The manager owns neither. Mind that a thread
    /// that is raising at this moment may still be inside the previous trace.
    Trace& setTrace(Trace& trace) noexcept;

    /// Visits the last raises, the oldest first, without allocating. A raise that another thread is
    /// recording at this moment is left out.
    void visitRaises(RaiseVisitor visitor, void* context) const;

    /// Writes the last raises, the oldest first, one to a line: time (UTC), thread and its name,
    /// position, type and reason. Line breaks and other control characters are escaped (`\n`).
    void listRaises(std::ostream& os) const;

    /// Keeps the raise in the history, then hands the exception to the trace with the given
    /// position. `raise` does it before it throws.
    void reportException(const ExBase& exception, const char* file, int line) noexcept;
};

} // namespace Kr
