#pragma once

/// @file
/// The memory of the last raises: a ring of records of fixed size, written and read without a lock.
/// It is constant-initialised and never destroyed, so that static objects of any library can raise.

#include <base/exBase.h>
#include <base/traceRaise.h>

#include <cstddef>

namespace Kr
{

class RaiseHistory
{
public:
    static void record(const ExBase& exception) noexcept;

    /// The oldest first; a raise that another thread is recording at this moment is left out.
    static void visit(TraceRaise::Visitor visitor, void* context);

    /// Long enough for the longest raise, even if each of its characters is escaped.
    using Line = char[2048];

    /// Formats a raise as one line, control characters escaped; returns its length.
    /// @param type the name of the exception's type, as people write it
    static std::size_t format(Line& line, const TraceRaise& raise, const char* type);
};

} // namespace Kr
