#pragma once

/// @file
/// Internal to the library: numbers to text, without a terminator, fast.

#include <charconv>
#include <cstdint>

namespace Kr
{
namespace LgFormat
{

/// Writes the decimal text of an integer and returns its end. Room for 20 characters is enough.
template <class Integer>
char* write(char* to, Integer value)
{
    return std::to_chars(to, to + 20, value).ptr;
}

/// Whether the magnitude is below 2^64: what `write` takes.
bool isEveryday(double value) noexcept;

/// Writes the text of "%f" and returns its end. Room for 28 characters is enough. Exact: the binary
/// value is rounded to six decimals, a tie to the even one.
/// @pre isEveryday(value)
char* write(char* to, double value) noexcept;

} // namespace LgFormat
} // namespace Kr
