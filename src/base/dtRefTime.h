#pragma once

/// @file
/// Reference time: points on the process's one reference clock.
/// @code
/// Kr::DtRefTimeFactory& clock = Kr::DtRefTimeFactory::getInstance();
/// const Kr::DtRefTime now = clock.create();
/// const Kr::DtRefTime inAQuarter = clock.create(now, Kr::DtTimeIndex(6), Kr::Rational(24, 1));
/// @endcode
/// The clock counts ticks at the exact rate of its source, the hardware counter, from near 0 when
/// the factory is made. Make the factory while the program starts; from then on any thread may use
/// it. `DtTimeMark` relates reference times to stream times.
///
/// Pitfall: a default reference time is at the rate 1/1, which is not the clock's: offering it as a
/// base is a failed assertion.

#include <base/dtRefClockSource.h>
#include <base/objPtr.h>

#include <iosfwd>

namespace Kr
{

/// A tick count on the reference clock. A value type; the factory makes all but the default value.
class KR_BASE_API DtRefTime
{
public:
    /// 0 at 1/1.
    DtRefTime() = default;

    DtTimeIndex getCount() const { return _count; }
    /// Ticks per second.
    Rational getRate() const { return _rate; }

    /// Writes "(5 @ (1000/1=1000))": count and rate, no line end.
    void dump(std::ostream& os) const;

private:
    friend class DtRefTimeFactory;

    DtRefTime(const DtTimeIndex& count, const Rational& rate);

    DtTimeIndex _count;
    Rational _rate;
};

/// As `DtRefTime::dump`.
KR_BASE_API std::ostream& operator<<(std::ostream& os, const DtRefTime& refTime);

/// The reference clock.
class KR_BASE_API DtRefTimeFactory
{
public:
    /// The factory, made at the first call; it lives as long as the process.
    static DtRefTimeFactory& getInstance();

    DtRefTimeFactory(const DtRefTimeFactory&) = delete;
    DtRefTimeFactory& operator=(const DtRefTimeFactory&) = delete;

    const DtRefClockSource& getClockSource() const { return *_source; }

    /// Now. Raises what the source raises.
    DtRefTime create() const;

    /// The given tick of the source of that name; for counts that were stored with the name.
    /// @throws DtRefClockEx::SourceMismatch if the clock's source has another name
    DtRefTime create(const DtTimeIndex& count, const char* sourceName) const;

    /// So many ticks of another rate after a reference time, truncated toward zero to the clock's
    /// ticks. The reference time is at the clock's rate (a failed assertion).
    DtRefTime create(const DtRefTime& refTime, const DtTimeIndex& offset,
                     const Rational& offsetRate) const;

private:
    DtRefTimeFactory();
    ~DtRefTimeFactory() = default;

    ObjPtr<DtRefClockSource> _source;
};

} // namespace Kr
