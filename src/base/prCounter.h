#pragma once

/// @file
/// One performance counter of a query, with its value by the last collection.
/// @code{.cpp}
/// #include <base/prQuery.h>
///
/// void showLoad(const Kr::PrCounter& load)
/// {
///     if (load.isAvailable())
///         std::cout << load.getPath() << ": " << load.getValue() << '\n';
/// }
/// @endcode
/// The unit is the counter's: its name says what is counted, "/sec" is a rate and "%" a share.
///
/// What is computed from two collections, such as rates and shares of time, has no value after the
/// first, nor after one at which its instance was not there or was another process than before.
///
/// Pitfalls: a counter belongs to its query and goes with it. For one thread at a time.

#include <base/krBaseApi.h>
#include <base/prPath.h>

#include <iosfwd>
#include <string>

namespace Kr
{

class KR_BASE_API PrCounter
{
public:
    enum Status
    {
        NotCollected, ///< the query has not been collected since the counter was added
        FirstOfTwo,   ///< a value takes two collections, some time apart
        Available,
        NoInstance, ///< there is none of that name; it may come
        Failed      ///< the system tells why: see the reason that `getValue` raises
    };

    PrCounter(const PrCounter&) = delete;
    PrCounter& operator=(const PrCounter&) = delete;
    ~PrCounter();

    const PrPath& getPath() const noexcept { return _path; }

    /// Whether a value takes two collections.
    bool isRate() const noexcept { return _isRate; }

    Status getStatus() const noexcept { return _status; }
    bool isAvailable() const noexcept { return _status == Available; }

    /// The value; shares are in per cent and times in seconds. A share of a process's time can be
    /// above 100, up to 100 for each processor. Raises `PrEx::ExNoValue`, which says why, if it is
    /// not available.
    double getValue() const;

    /// The value, or the one given if there is none.
    double getValue(double otherwise) const noexcept { return isAvailable() ? _value : otherwise; }

    /// Why there is no value, as half a sentence; empty if there is one.
    std::string getProblem() const;

private:
    friend class PrQuery;

    PrCounter(const PrPath& path, void* handle);

    // The system's part (prCounterWindows)
    static bool performAskIfRate(void* handle) noexcept;
    static void performRelease(void* handle) noexcept;
    void performUpdate() noexcept;
    void keepTo(double identity) noexcept;
    std::string performDescribe() const;

    const PrPath _path;
    void* const _handle;
    void* _identity = nullptr; ///< tells which process a rate is of; null for others
    const bool _isRate;
    Status _status = NotCollected;
    unsigned long _systemStatus = 0; ///< of a failure
    double _value = 0.;
    double _lastIdentity = -1.; ///< below 0: none
};

/// Writes the path and the value, a whole number to the last digit and another to three decimals,
/// or why there is none: "\Memory\Available Bytes: 8589934592".
KR_BASE_API std::ostream& operator<<(std::ostream& os, const PrCounter& counter);

} // namespace Kr
