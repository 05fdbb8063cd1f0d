#pragma once

/// @file
/// Checks of a caller's misuse, always on: a failed check raises `ExInternalError`.
/// @code{.cpp}
/// void setFieldOfView(double degrees)
/// {
///     KR_ASSERT(degrees > 0. && degrees < 180.);
///     // ...
/// }
/// @endcode
/// Invariants of the library's own are the runtime's `assert` instead.

#include <base/internal/errors/sourcePosition.h>
#include <base/krBaseApi.h>

namespace Kr
{

class KR_BASE_API Assertions
{
public:
    /// Raises `ExInternalError` with "Assertion '%s' failed.", at the caller's position.
    [[noreturn]] static void throwAssertionFailed(const char* file, int line,
                                                  const char* expression);

    /// Raises `ExInternalError` with "Assertion '%s' failed, errno = %d (%s).": the expression, the
    /// number and the runtime's text for it.
    [[noreturn]] static void throwSysAssertionFailed(const char* file, int line,
                                                     const char* expression, int errorNumber);

    /// Raises `ExInternalError` with "Program aborted.".
    [[noreturn]] static void throwProgramAborted(const char* file, int line);
};

} // namespace Kr

/// Raises `Kr::ExInternalError` naming the expression, as it is written, when it does not hold.
#define KR_ASSERT(expression)                                                                      \
    ((expression) ? static_cast<void>(0)                                                           \
                  : ::Kr::Assertions::throwAssertionFailed(KR_HERE, #expression))

/// The same with a line number that is part of the interface.
#define KR_ASSERT_AT(expression, line)                                                             \
    ((expression) ? static_cast<void>(0)                                                           \
                  : ::Kr::Assertions::throwAssertionFailed(KR_HERE_AT(line), #expression))

/// The same with a text and a line that are part of the interface, whatever the condition is
/// written as: `KR_ASSERT_TEXT(size != 0, "_size > 0", 87)`.
#define KR_ASSERT_TEXT(holds, text, line)                                                          \
    ((holds) ? static_cast<void>(0)                                                                \
             : ::Kr::Assertions::throwAssertionFailed(KR_HERE_AT(line), text))
