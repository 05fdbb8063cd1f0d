#pragma once

/// @file
/// Asks the operating system for its performance counters: how busy the processors are, how much
/// memory there is, what processes and disks do.
/// @code
/// Kr::PrQuery query;
/// const Kr::PrCounter& load = query.add("\\Processor(_Total)\\% Processor Time");
/// const Kr::PrCounter& memory = query.add("\\Memory\\Available Bytes");
/// query.collect();
/// std::this_thread::sleep_for(std::chrono::seconds(1));
/// query.collect(); // a share of time takes two
/// std::cout << load.getValue() << " %, " << memory.getValue() << " bytes\n";
/// @endcode
/// One collection takes all counters of the query at one time, and costs less than each alone.
/// `PrPath` tells how a counter is named, `PrCatalog` which there are.
///
/// Pitfalls: the first collection gives no value of a rate or a share of time. Values are those of
/// the last collection, until the next. For one thread at a time. A process is an instance by its
/// name, which several may have: `findProcess` tells which one is meant.

#include <base/krBaseApi.h>
#include <base/prCounter.h>
#include <base/prPath.h>
#include <base/vector.h>

#include <iosfwd>
#include <memory>
#include <string>

namespace Kr
{

class KR_BASE_API PrQuery
{
public:
    /// Raises `PrEx::ExSystem` if the system has no counters.
    PrQuery();
    PrQuery(const PrQuery&) = delete;
    PrQuery& operator=(const PrQuery&) = delete;
    ~PrQuery();

    /// Adds a counter, which lives until it is removed or the query ends. Raises
    /// `PrEx::ExInvalidPath` for a pattern, `PrEx::ExUnknownObject`, `ExUnknownCounter` or
    /// `ExUnknownInstance`, with the nearest names, if the system does not have it, and
    /// `PrEx::ExSystem` if it refuses.
    const PrCounter& add(const PrPath& path);

    /// The same for an instance that may come later, such as a process that is not started yet:
    /// until then the counter's status is `PrCounter::NoInstance`.
    const PrCounter& addExpected(const PrPath& path);

    /// Ends a counter of this query.
    void remove(const PrCounter& counter);

    /// Takes all counters of the query. What keeps one from having a value is its own status.
    /// Raises `PrEx::ExSystem` if nothing can be taken; values stay as they were then.
    void collect();

    /// In the order in which they were added.
    Vector<const PrCounter*> getCounters() const;

    /// The value of one counter at this moment; raises as `add` and `PrCounter::getValue`. Rates
    /// and shares of time have none.
    static double read(const PrPath& path);

    /// The instance of the object "Process" that has this number now; empty if none has. Raises
    /// `PrEx::ExUnknownObject` where the system does not count processes.
    static std::string findProcess(unsigned long id);

private:
    // The system's part (prQueryWindows)
    static void* performOpen();
    static void performClose(void* query) noexcept;
    static void* performAdd(void* query, const PrPath& path);
    static void performCollect(void* query);

    void* addKnown(const PrPath& path);

    void* const _query;
    Vector<std::unique_ptr<PrCounter>> _counters;
};

/// Writes a line for each counter. A message of the log takes a query, or a counter, too.
KR_BASE_API std::ostream& operator<<(std::ostream& os, const PrQuery& query);

} // namespace Kr
