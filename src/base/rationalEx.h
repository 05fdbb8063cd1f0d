#pragma once

/// @file
/// The exceptions of `Rational`.
/// @code
/// try
/// {
///     std::cout << Kr::Rational(30000, 0);
/// }
/// catch (const Kr::RationalEx::ExDenominatorZero& error)
/// {
///     std::cerr << error.getReason() << '\n'; // Illegal zero denominator.
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API RationalEx : public ExBase
{
public:
    class ExDenominatorZero;

protected:
    RationalEx(const char* file, int line) noexcept;
};

/// "Illegal zero denominator."
class KR_BASE_API RationalEx::ExDenominatorZero
    : public ExConcrete<RationalEx::ExDenominatorZero, std::invalid_argument, RationalEx>
{
public:
    ExDenominatorZero(const char* file, int line);
};

} // namespace Kr
