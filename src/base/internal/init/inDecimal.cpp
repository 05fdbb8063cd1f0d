#include <base/internal/init/inDecimal.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <string>

namespace Kr
{

namespace
{

/// Whether a decimal number that the type does not have is too large, not too small: whether its
/// leading digit stands before the decimal point once the exponent is applied.
bool isTooLarge(const char* number, const char* end)
{
    const char* const exponentMark =
        std::find_if(number, end, [](char c) { return c == 'e' || c == 'E'; });
    const char* const point = std::find(number, exponentMark, '.');
    const char* const digit =
        std::find_if(number, exponentMark, [](char c) { return c >= '1' && c <= '9'; });
    const std::ptrdiff_t place = point - digit;
    long exponent = 0;
    if (exponentMark != end)
        exponent = std::strtol(std::string(exponentMark + 1, end).c_str(), nullptr, 10);
    return exponent > -place;
}

} // namespace

template <class T>
InDecimal<T> InDecimal<T>::parse(const char* begin, const char* end)
{
    T value{};
    const std::from_chars_result result = std::from_chars(begin, end, value);
    if (result.ec != std::errc::result_out_of_range)
        return {value, result.ptr, InDecimalRange::Inside};
    const bool isLarge = isTooLarge(begin, result.ptr);
    const T magnitude = isLarge ? std::numeric_limits<T>::infinity() : T(0);
    return {*begin == '-' ? -magnitude : magnitude, result.ptr,
            isLarge ? InDecimalRange::TooLarge : InDecimalRange::TooSmall};
}

template struct InDecimal<float>;
template struct InDecimal<double>;

} // namespace Kr
