#pragma once

/// @file
/// Byte order.
/// @code
/// // a field that the file holds with its highest byte first
/// std::uint32_t size = 0;
/// std::ifstream("scene.bin", std::ios::binary).read(reinterpret_cast<char*>(&size), sizeof size);
/// size = Kr::OsEndian::invertIf(!Kr::OsEndian::isBigEndian(), size);
/// @endcode
/// Pitfall: a float or double with its bytes reversed is a pattern of bits, no number. Copying one as
/// a number alters some patterns on 32-bit Intel processors (signalling NaNs become quiet ones), and
/// a program compiled there without optimisation copies even the result of `invert` that way. Where
/// such patterns matter use `invertInPlace`, which never takes the bytes for a number; `invert` and
/// `invertIf` copy integers only, and are always inlined.


#include <cstdint>

namespace Kr
{

/// For every signed and unsigned integer type of 8 to 64 bits, float and double.
class OsEndian
{
public:
    /// The value with its bytes in reverse order.
    template <class T>
    [[gnu::always_inline]] static T invert(const T& value) noexcept;

    /// The same if the condition holds, else the value.
    template <class T>
    [[gnu::always_inline]] static T invertIf(bool condition, const T& value) noexcept;

    /// Reverses the bytes where they are. Every bit is kept, whatever it is compiled with.
    template <class T>
    static void invertInPlace(T& value) noexcept;

    /// Whether this machine keeps the highest byte of an integer first.
    static bool isBigEndian() noexcept;

private:
    static std::uint8_t reverse(std::uint8_t value) noexcept;
    static std::uint16_t reverse(std::uint16_t value) noexcept;
    static std::uint32_t reverse(std::uint32_t value) noexcept;
    static std::uint64_t reverse(std::uint64_t value) noexcept;
};

} // namespace Kr

#include <base/osEndian.inline>
