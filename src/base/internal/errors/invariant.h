#pragma once

/// @file
/// The library's own invariants whose text and line are part of the interface, whatever the
/// condition is written as. Invariants without a stated text are the runtime's `assert` itself.
/// @code
/// const int held = 1;
/// KR_INVARIANT_TEXT(held != 0, "_size > 0", 87);
/// @endcode

#include <base/internal/errors/sourcePosition.h>

namespace Kr
{

/// Ends the program as the runtime's `assert` does, with its message.
[[noreturn]] void failInvariant(const char* file, int line, const char* text) noexcept;

} // namespace Kr

#ifdef NDEBUG
/// Checked as the runtime's `assert` is: not at all in builds without it.
#define KR_INVARIANT_TEXT(holds, text, line) static_cast<void>(sizeof((holds) ? 1 : 0))
#else
#define KR_INVARIANT_TEXT(holds, text, line)                                                       \
    ((holds) ? static_cast<void>(0) : ::Kr::failInvariant(KR_HERE_AT(line), text))
#endif
