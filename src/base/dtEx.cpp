#include <base/dtEx.h>

#include <base/rational.h>

#include <algorithm>
#include <cstdio>

namespace Kr
{

DtEx::DtEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

DtEx::BadRate::BadRate(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Null rate not allowed in DtTime.");
}

DtEx::BadRefRate::BadRefRate(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Mismatched reference clock rates.");
}

DtEx::DtStringError::DtStringError(const char* file, int line, ErrorCode errorCode)
    : ExConcrete(file, line)
    , _errorCode(errorCode)
{
    setReason("DtString conversion error: ");
    setReason(toString(errorCode));
}

const char* DtEx::DtStringError::toString(ErrorCode errorCode) noexcept
{
    switch (errorCode)
    {
    case NumeratorMalformed:
        return "Rate numerator malformed.";
    case NumeratorOverflow:
        return "Rate numerator overflow.";
    case DenominatorMalformed:
        return "Rate denominator malformed.";
    case DenominatorOverflow:
        return "Rate denominator overflow.";
    }
    return "Unknown error.";
}

DtEx::CountOverflow::CountOverflow(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Count does not fit in 64 bits at the new rate.");
}

DtEx::RateOverflow::RateOverflow(const char* file, int line, const Rational& first,
                                 const Rational& second)
    : ExConcrete(file, line)
{
    char reason[112];
    std::snprintf(reason, sizeof(reason), "No common rate of %d/%d and %d/%d fits in 32 bits.",
                  static_cast<int>(first.getNumerator()), static_cast<int>(first.getDenominator()),
                  static_cast<int>(second.getNumerator()),
                  static_cast<int>(second.getDenominator()));
    setReason(reason);
}

DtEx::NoTimeCode::NoTimeCode(const char* file, int line, const Rational& rate, bool dropFrame)
    : ExConcrete(file, line)
{
    char reason[80];
    std::snprintf(reason, sizeof(reason), "No %s time code at the rate %d/%d.",
                  dropFrame ? "drop-frame" : "non-drop", static_cast<int>(rate.getNumerator()),
                  static_cast<int>(rate.getDenominator()));
    setReason(reason);
}

DtEx::BadTimeCode::BadTimeCode(const char* file, int line, const char* text, std::size_t length,
                               const char* fault)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof(reason), "Time code '%.*s': %s.",
                  static_cast<int>(std::min<std::size_t>(length, 256)), text, fault);
    setReason(reason);
}

} // namespace Kr
