#include <base/rationalEx.h>

namespace Kr
{

RationalEx::RationalEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

RationalEx::ExDenominatorZero::ExDenominatorZero(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Illegal zero denominator.");
}

} // namespace Kr
