#pragma once

/// @file
/// Internal to the library: floating-point numbers as texts, whatever the locale.

namespace Kr
{

enum class InDecimalRange
{
    Inside,
    TooSmall, ///< 0 is the nearest number
    TooLarge
};

/// What a text begins with.
/// @tparam T `float` or `double`
template <class T>
struct InDecimal
{
    T value;         ///< what is too small is 0, what is too large an infinity, each with the sign
    const char* end; ///< of the number; the begin of the text when there is none, with the value 0
    InDecimalRange range;

    static InDecimal parse(const char* begin, const char* end);
};

extern template struct InDecimal<float>;
extern template struct InDecimal<double>;

} // namespace Kr
