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
/// Pitfalls: a source runs on the reader's thread, and must not log. `setSource` is the program's
/// own; libraries add theirs, as the ledger of a checked heap (`hmCheckedNew.h`) and the counters
/// of the system (`KR_LOG_TIMELINE_COUNTERS`) do.

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

    /// Adds a source to that of the program; false if there are eight already.
    static bool addSource(Source source) noexcept;
    /// Takes it back. It may still be running.
    static void removeSource(Source source) noexcept;

    /// Calls all sources.
    static void ask(Add add, void* timeline);
};

} // namespace Kr
