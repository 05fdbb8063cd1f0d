#pragma once

/// @file
/// What the leak collector raises.
/// @code{.cpp}
/// #include <base/hmGC.h>
///
/// void check(Kr::HmGC& collector, void* block)
/// {
///     try
///     {
///         collector.validateAndPrint(block);
///     }
///     catch (const Kr::HmGCEx::ExGarbageDetected& error)
///     {
///         std::cerr << error.getReason() << '\n';
///     }
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API HmGCEx : public ExBase
{
public:
    class ExGarbageDetected;

protected:
    HmGCEx(const char* file, int line) noexcept;
};

/// "Garbage Collector has detected leaks."
class KR_BASE_API HmGCEx::ExGarbageDetected
    : public ExConcrete<HmGCEx::ExGarbageDetected, std::runtime_error, HmGCEx>
{
public:
    ExGarbageDetected(const char* file, int line);
};

} // namespace Kr
