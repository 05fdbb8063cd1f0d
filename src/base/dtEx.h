#pragma once

/// @file
/// The exceptions of discrete time.
/// @code
/// try
/// {
///     std::cout << Kr::DtTimeCode(Kr::Rational(0, 1)).getText(1);
/// }
/// catch (const Kr::DtEx::NoTimeCode& error)
/// {
///     std::cerr << error.getReason() << '\n';
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class Rational;

class KR_BASE_API DtEx : public ExBase
{
public:
    class BadRate;
    class BadRefRate;
    class DtStringError;
    class CountOverflow;
    class RateOverflow;
    class NoTimeCode;
    class BadTimeCode;

protected:
    DtEx(const char* file, int line) noexcept;
};

/// "Null rate not allowed in DtTime."
class KR_BASE_API DtEx::BadRate : public ExConcrete<DtEx::BadRate, std::logic_error, DtEx>
{
public:
    BadRate(const char* file, int line);
};

/// "Mismatched reference clock rates.": for applications; in the library a mismatch of reference
/// rates is a failed assertion.
class KR_BASE_API DtEx::BadRefRate : public ExConcrete<DtEx::BadRefRate, std::logic_error, DtEx>
{
public:
    BadRefRate(const char* file, int line);
};

/// "DtString conversion error: " and the text of its code.
class KR_BASE_API DtEx::DtStringError
    : public ExConcrete<DtEx::DtStringError, std::logic_error, DtEx>
{
public:
    enum ErrorCode : std::int32_t
    {
        NumeratorMalformed = 0,
        NumeratorOverflow = 1,
        DenominatorMalformed = 2,
        DenominatorOverflow = 3
    };

    DtStringError(const char* file, int line, ErrorCode errorCode);

    ErrorCode getErrorCode() const noexcept { return _errorCode; }

    /// "Rate numerator malformed." and so on; "Unknown error." for any other value.
    static const char* toString(ErrorCode errorCode) noexcept;

private:
    ErrorCode _errorCode;
};

/// "Count does not fit in 64 bits at the new rate."
class KR_BASE_API DtEx::CountOverflow
    : public ExConcrete<DtEx::CountOverflow, std::logic_error, DtEx>
{
public:
    CountOverflow(const char* file, int line);
};

/// "No common rate of 24/1 and 25/1 fits in 32 bits.": with the rates' own terms.
class KR_BASE_API DtEx::RateOverflow : public ExConcrete<DtEx::RateOverflow, std::logic_error, DtEx>
{
public:
    RateOverflow(const char* file, int line, const Rational& first, const Rational& second);
};

/// "No drop-frame time code at the rate 25/1.": frames at the rate cannot be counted that way.
class KR_BASE_API DtEx::NoTimeCode : public ExConcrete<DtEx::NoTimeCode, std::logic_error, DtEx>
{
public:
    NoTimeCode(const char* file, int line, const Rational& rate, bool dropFrame);
};

/// "Time code '01:60:00:00': minutes above 59.": the text, cut at 256 characters, and what is wrong
/// with it.
class KR_BASE_API DtEx::BadTimeCode : public ExConcrete<DtEx::BadTimeCode, std::logic_error, DtEx>
{
public:
    /// @param text the time code
    /// @param length its length in characters
    /// @param fault what is wrong, without a full stop
    BadTimeCode(const char* file, int line, const char* text, std::size_t length,
                const char* fault);
};

} // namespace Kr
