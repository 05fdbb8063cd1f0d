#include <base/internal/counters/prValueText.h>

#include <charconv>
#include <cmath>
#include <iterator>

namespace Kr
{

std::string formatCounterValue(double value)
{
    const int decimals = value == std::floor(value) ? 0 : 3;
    char text[512]; // the longest double has 309 digits
    const auto end = std::to_chars(text, std::end(text), value, std::chars_format::fixed, decimals);
    return {text, end.ptr};
}

} // namespace Kr
