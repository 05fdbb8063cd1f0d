#pragma once

/// @file
/// Byte order.
/// @code
/// // a field that the file holds with its highest byte first
/// std::uint32_t size = 0;
/// std::ifstream("scene.bin", std::ios::binary).read(reinterpret_cast<char*>(&size), sizeof size);
/// size = Kr::OsEndian::invertIf(!Kr::OsEndian::isBigEndian(), size);
/// @endcode
/// Pitfall: a float or double with its bytes reversed is a pattern of bits, no number. Copying one
/// as a number alters some patterns on 32-bit Intel processors (signalling NaNs become quiet ones),
/// and a compiler there may copy any variable of such a type that way, whatever is done here:
/// `invert` and `invertIf` themselves copy integers only, and are always inlined. Where such
/// patterns can occur, read the bytes into an integer of the same size and reverse that.

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
