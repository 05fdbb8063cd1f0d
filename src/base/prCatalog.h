#pragma once

/// @file
/// Which performance counters there are.
/// @code
/// for (const std::string& object : Kr::PrCatalog::getObjects())
///     std::cout << object << '\n';
/// for (const Kr::PrPath& path : Kr::PrCatalog::expand("\\Processor(*)\\% Processor Time"))
///     std::cout << path << '\n'; // \Processor(0)\% Processor Time and so on
/// @endcode
/// Every call asks the system anew. Objects come in the order of their names, the others in that of
/// the system. Names are English.
///
/// Pitfalls: on Windows the first list of a process can take seconds, since the system asks every
/// provider of counters that is installed. Instances come and go between one call and the next.

#include <base/krBaseApi.h>
#include <base/prPath.h>
#include <base/vector.h>

#include <string>

namespace Kr
{

class PrQuery;

class KR_BASE_API PrCatalog
{
public:
    /// What counters are about. This and the others raise `PrEx::ExSystem` if the system refuses.
    static Vector<std::string> getObjects();

    /// What an object counts. This and the others raise `PrEx::ExUnknownObject`.
    static Vector<std::string> getCounters(const std::string& object);

    /// Of what it counts; those of one name are numbered as in a path. Empty if the object is only
    /// one thing, as the memory is.
    static Vector<std::string> getInstances(const std::string& object);

    /// All paths that there are of a pattern, in which a `*` stands for any characters of the
    /// instance or the counter; none if nothing fits it. A path that is no pattern is looked up:
    /// it comes back in the spelling of the system. Raises `PrEx::ExUnknownCounter` and
    /// `PrEx::ExUnknownInstance`, with the nearest names, for a part without a `*` that is not
    /// there.
    static Vector<PrPath> expand(const PrPath& pattern);

private:
    friend class PrQuery;

    struct Items
    {
        Vector<std::string> counters;
        Vector<std::string> instances;
    };

    static Items getItems(const std::string& object);
    static void requireInstance(const PrPath& path);

    // The system's part (prCatalogWindows)
    static Vector<std::string> performListObjects();
    static bool performListItems(const std::string& object, Items& items);
};

} // namespace Kr
