#pragma once

/// @file
/// What the reference clock counts by. Programs use `DtRefTimeFactory`.

#include <base/dtTimeIndex.h>
#include <base/krBaseApi.h>
#include <base/rational.h>

#include <string>

namespace Kr
{

/// A clock that counts ticks at an exact rate.
class KR_BASE_API DtRefClockSource
{
public:
    /// @param name copied
    /// @param rate ticks per second
    DtRefClockSource(const char* name, const Rational& rate);
    virtual ~DtRefClockSource();

    /// The current tick count; never below an earlier one.
    virtual DtTimeIndex getCount() const = 0;

    const char* getName() const { return _name.c_str(); }
    Rational getRate() const { return _rate; }

private:
    std::string _name;
    Rational _rate;
};

/// The hardware counter, under the name "HwCounter", counted from the moment when the source is
/// made. Any thread may read it.
class KR_BASE_API DtRefClockSourceHwCounter : public DtRefClockSource
{
public:
    DtRefClockSourceHwCounter();

    DtTimeIndex getCount() const override;

private:
    unsigned long long _origin; ///< time stamp
};

} // namespace Kr
