#pragma once

/// @file
/// Values that the timeline shows as curves.
/// @code{.cpp}
/// int triangles = 0;
///
/// void tellTriangles(Kr::LgCounters::Add add, void* timeline)
/// {
///     add(timeline, "triangles", triangles);
/// }
/// void start()
/// {
///     Kr::LgCounters::setSource(&tellTriangles);
/// }
/// @endcode
/// The logger's reader asks each time that it writes the timeline, and writes what has changed.
///
/// Pitfalls: the source runs on the reader's thread, and must not log. There is one for the
/// process; a program whose heap is checked (`hmCheckedNew.h`) has its ledger there.

#include <base/krBaseApi.h>

namespace Kr
{

class KR_BASE_API LgCounters
{
public:
    /// Takes a curve's name, which is copied, and its value at this moment.
    using Add = void (*)(void* timeline, const char* name, double value);

    /// Calls `add` once for each curve.
    using Source = void (*)(Add add, void* timeline);

    /// Null for none, as it is at first. For any thread; the one before may still be running.
    static void setSource(Source source) noexcept;
    static Source getSource() noexcept;
};

} // namespace Kr
