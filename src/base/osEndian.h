#pragma once

/// @file
/// Byte order.
/// @code
/// // a field that the file holds with its highest byte first
/// std::uint32_t size = 0;
/// std::ifstream("scene.bin", std::ios::binary).read(reinterpret_cast<char*>(&size), sizeof size);
/// size = Kr::OsEndian::invertIf(!Kr::OsEndian::isBigEndian(), size);
/// @endcode
/// Pitfall: a float or double with its bytes reversed is a pattern of bits, no number. On 32-bit
/// Intel processors a function that is not inlined returns it through a register that alters some
/// patterns (signalling NaNs become quiet ones), so do not return one from a function of your own:
/// reverse an integer of the same size and copy its bytes instead. These functions are always
/// inlined, and give back exactly the reversed bytes.


#include <cstdint>

namespace Kr
{

/// For every signed and unsigned integer type of 8 to 64 bits, float and double.
class OsEndian
{
public:
    /// The value with its bytes in reverse order.
    template <class T>
    [[gnu::always_inline]] static T invert(T value) noexcept;

    /// The same if the condition holds, else the value.
    template <class T>
    [[gnu::always_inline]] static T invertIf(bool condition, T value) noexcept;

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
