#pragma once

/// @file
/// The counter engine: what delivers the tick counts of `HwCounter`. Programs use `HwCounter`.

#include <base/krBaseApi.h>
#include <base/objPtr.h>

#include <iosfwd>

namespace Kr
{

/// A monotonic 64-bit tick count at an exact rate that fits a positive 32-bit integer. An engine
/// has no state that changes, so threads share it freely.
class KR_BASE_API HwCounterEng
{
public:
    /// The engine for this machine's counter. Its rate is the counter's frequency, halved as often
    /// as it takes to stay below 2^31.
    static ObjPtrRet<HwCounterEng> create();

    /// The same for a counter of `frequency` raw ticks per second, above 0 (a failed assertion).
    static ObjPtrRet<HwCounterEng> create(unsigned long long frequency);

    HwCounterEng() = default;
    HwCounterEng(const HwCounterEng&) = default;
    HwCounterEng& operator=(const HwCounterEng&) = default;
    virtual ~HwCounterEng();

    /// The current tick count.
    virtual unsigned long long timeStamp() const = 0;
    /// Seconds from one tick count to another; negative if `end` comes first.
    virtual double seconds(unsigned long long start, unsigned long long end) const = 0;
    /// The current tick count in seconds.
    virtual double seconds() const = 0;
    /// Seconds per tick.
    virtual double resolution() const = 0;
    /// The rate in ticks per second, as a fraction.
    virtual int getRateNumerator() const = 0;
    virtual int getRateDenominator() const = 0;
    /// Writes the rate and the cycle, a line each.
    virtual void dump(std::ostream& os) const = 0;
};

} // namespace Kr
