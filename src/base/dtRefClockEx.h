#pragma once

/// @file
/// The exceptions of the reference clock.
/// @code
/// try
/// {
///     Kr::DtRefTimeFactory::getInstance().create(Kr::DtTimeIndex(250), "SoundCard");
/// }
/// catch (const Kr::DtRefClockEx::SourceMismatch& error) // the clock's source is "HwCounter"
/// {
///     std::cerr << error.getReason() << '\n';
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API DtRefClockEx : public ExBase
{
public:
    class SourceMismatch;
    class GetCount;

protected:
    DtRefClockEx(const char* file, int line) noexcept;
};

/// "Clock source name does not match system reference clock."
class KR_BASE_API DtRefClockEx::SourceMismatch
    : public ExConcrete<DtRefClockEx::SourceMismatch, std::logic_error, DtRefClockEx>
{
public:
    SourceMismatch(const char* file, int line);
};

/// "Reference clock failed to get clock value.": for sources that can fail to read their clock; the
/// hardware counter's does not raise it.
class KR_BASE_API DtRefClockEx::GetCount
    : public ExConcrete<DtRefClockEx::GetCount, std::runtime_error, DtRefClockEx>
{
public:
    GetCount(const char* file, int line);
};

} // namespace Kr
