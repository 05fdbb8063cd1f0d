#include <base/internal/random/radicalInverse.h>
#include <base/internal/random/reversedBits.h>

#include <algorithm>
#include <type_traits>

namespace Kr
{

namespace
{

/// The sum is rounded to T; the product is a double's.
template <class T>
T add(T sum, double product)
{
    return static_cast<T>(static_cast<double>(sum) + product);
}

/// In base 2 every sum of a double is exact. A float's has 24 bits from the first set digit on: the
/// next digit is rounded to even, and what follows it is too small to change the sum.
template <class T>
T getBase2(std::uint32_t n)
{
    std::uint32_t digits = getReversedBits(n);
    if constexpr (std::is_same_v<T, float>)
    {
        const int excess = n != 0 ? 7 - __builtin_ctz(n) : 0;
        if (excess > 0)
            digits &= 0xFFFFFFFFU << excess;
    }
    return static_cast<T>(digits) * static_cast<T>(1. / 4294967296.);
}

} // namespace

template <class T>
T RadicalInverse<T>::get(std::uint32_t n) const
{
    if (_base == 2)
        return getBase2<T>(n);
    T value = 0;
    for (T factor = _inverseBase; n != 0; factor *= _inverseBase)
    {
        const std::uint32_t rest = n / _base;
        const std::uint32_t digit = n - rest * _base;
        if (digit != 0)
            value = add(value, digit * static_cast<double>(factor));
        n = rest;
    }
    return value;
}

template <class T>
struct RadicalInverse<T>::LowDigits
{
    static constexpr unsigned int maxSize = 256;

    T values[maxSize];
    unsigned int size = 1; ///< base to the number of digits
    T factor;              ///< of the digit that comes next
};

template <class T>
typename RadicalInverse<T>::LowDigits RadicalInverse<T>::makeLowDigits(unsigned int count) const
{
    LowDigits low;
    low.values[0] = 0;
    low.factor = _inverseBase;
    const unsigned int limit = std::min(count, LowDigits::maxSize);
    while (low.size <= limit / _base)
    {
        for (std::uint32_t digit = 1; digit < _base; ++digit)
        {
            const double product = digit * static_cast<double>(low.factor);
            std::transform(low.values, low.values + low.size, low.values + digit * low.size,
                           [product](T value) { return add(value, product); });
        }
        low.size *= _base;
        low.factor *= _inverseBase;
    }
    return low;
}

/// The integers share all digits but the low ones, so each of the others is added to all of them.
template <class T>
void RadicalInverse<T>::fillBlock(const LowDigits& low, std::uint32_t first, unsigned int count,
                                  T* array) const
{
    const T* const start = low.values + first % low.size;
    std::uint32_t high = first / low.size;
    if (_base == 2 && (std::is_same_v<T, double> || first < 1U << 24))
    {
        // Any sum is exact, so all the digits can be added at once.
        const T sum = getBase2<T>(high * low.size);
        std::transform(start, start + count, array, [sum](T value) { return value + sum; });
        return;
    }
    std::copy_n(start, count, array);
    for (T factor = low.factor; high != 0; factor *= _inverseBase, high /= _base)
    {
        const double product = high % _base * static_cast<double>(factor);
        if (product != 0.)
            std::transform(array, array + count, array,
                           [product](T value) { return add(value, product); });
    }
}

template <class T>
void RadicalInverse<T>::fill(std::uint32_t first, unsigned int count, T* array) const
{
    const LowDigits low = makeLowDigits(count);
    while (count != 0)
    {
        // The last integer of 32 bits ends a block too, since the next is 0.
        const std::uint32_t blockRest = low.size - 1 - first % low.size;
        const unsigned int block = std::min({count - 1, blockRest, ~first}) + 1;
        fillBlock(low, first, block, array);
        first += block;
        array += block;
        count -= block;
    }
}

template class RadicalInverse<float>;
template class RadicalInverse<double>;

} // namespace Kr
