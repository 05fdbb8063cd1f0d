#pragma once

/// @file
/// What `KR_TRACE_OPTIONS` asks for.

namespace Kr
{

class TraceOptions
{
public:
    /// Reads the variable at the first call, reports its unknown words and arranges for the history
    /// to be listed, if that is wanted. `errno` stays as it is.
    static bool arePrinting() noexcept;
};

} // namespace Kr
