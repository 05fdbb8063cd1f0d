#pragma once

/// @file
/// A name for a thread, for people to read: the log shows it in the place of the thread's number,
/// the timeline above the thread's spans, and the trace beside its raises.
/// @code
/// std::thread loader(
///     []
///     {
///         Kr::ThreadName::set("loader");
///         // ... whatever it logs and raises from here on bears its name
///     });
/// loader.join();
/// @endcode
/// The system's debugger is not told.

#include <base/krBaseApi.h>

#include <cstddef>

namespace Kr
{

class KR_BASE_API ThreadName
{
public:
    /// The size of a name, its terminator included.
    enum : std::size_t
    {
        size = 32
    };

    /// Names the calling thread. The text is copied, and cut to 31 bytes; null or an empty one
    /// takes the name away.
    static void set(const char* name);

    /// The calling thread's name; empty if it has none.
    static const char* get() noexcept;
};

} // namespace Kr
