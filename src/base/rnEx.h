#pragma once

/// @file
/// The exceptions of random numbers. Null sources and impossible parameters are failed assertions;
/// these are for data that a program got from elsewhere.
/// @code
/// const float brightness[] = {0.f, 0.f, 0.f};
/// try
/// {
///     Kr::RnHistogram<float> lights(0.f, 3.f, 3, brightness);
/// }
/// catch (const Kr::RnEx::BadHistogram& error)
/// {
///     std::cerr << error.getReason() << '\n'; // "Histogram: all 3 weights are 0."
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API RnEx : public ExBase
{
public:
    class BadHistogram;
    class UnusableSource;

protected:
    RnEx(const char* file, int line) noexcept;
};

/// "Histogram: " and what is wrong with its weights, bins or ranges.
class KR_BASE_API RnEx::BadHistogram
    : public ExConcrete<RnEx::BadHistogram, std::runtime_error, RnEx>
{
public:
    BadHistogram(const char* file, int line, const char* problem);
};

/// "Source '%s' gives no sample that can be used.", with the source's name.
class KR_BASE_API RnEx::UnusableSource
    : public ExConcrete<RnEx::UnusableSource, std::runtime_error, RnEx>
{
public:
    UnusableSource(const char* file, int line, const char* name);
};

} // namespace Kr
