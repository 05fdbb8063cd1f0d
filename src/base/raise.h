#pragma once

/// @file
/// Raising: how an exception comes to be thrown, so that no raise forgets the trace (trace.h).
///
/// The exception is built from the position and from its own arguments:
/// @code
/// const char* file = std::getenv("SCENE");
/// if (file == nullptr)
///     Kr::raise<Kr::ExInternalError>(KR_HERE, "There is no scene to show.");
/// @endcode
/// Raising neither locks nor allocates, but for what the language's throw itself allocates, and any
/// thread may raise at any time, static objects included.

#include <base/exBase.h>
#include <base/internal/errors/sourcePosition.h>
#include <base/krBaseApi.h>

namespace Kr
{

/// What `raise` does before it throws: keeps the raise in the history, then hands the exception to
/// the trace with the given position. `errno` stays as it is.
KR_BASE_API void reportRaise(const ExBase& exception, const char* file, int line) noexcept;

/// Builds the exception where the throw wants it, so that nothing has to be copied. For `raise`.
template <class Exception, class... Arguments>
Exception buildReported(const char* file, int line, const Arguments&... arguments)
{
    Exception exception(file, line, arguments...);
    reportRaise(exception, file, line);
    return exception;
}

/// Builds an exception, hands it to the trace and throws it: `raise<Exception>(KR_HERE, ...)`.
template <class Exception, class... Arguments>
[[noreturn, gnu::always_inline]] inline void raise(const char* file, int line,
                                                   const Arguments&... arguments)
{
    // Inline, because each frame that a throw has to leave costs as much as everything above.
    throw buildReported<Exception>(file, line, arguments...);
}

/// Hands an exception that exists already to the trace, with the given position, and throws a copy
/// of it.
template <class Exception>
[[noreturn]] void raise(const Exception& exception, const char* file, int line)
{
    reportRaise(exception, file, line);
    throw exception;
}

/// The same with the exception's own position.
template <class Exception>
[[noreturn]] void raise(const Exception& exception)
{
    raise(exception, exception.getFileName(), exception.getLineNo());
}

} // namespace Kr
