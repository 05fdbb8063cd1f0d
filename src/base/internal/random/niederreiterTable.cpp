#include <base/internal/random/niederreiterTable.h>

#include <algorithm>
#include <limits>

namespace Kr::Niederreiter
{

namespace
{

constexpr Row combine(const Row& a, const Row& b)
{
    return {a[0] ^ b[0], a[1] ^ b[1], a[2] ^ b[2], a[3] ^ b[3]};
}

/// What each value of `Bits` bits of the index contributes, bit `First` being the lowest of them.
template <unsigned int First, unsigned int Bits>
constexpr auto makeRows()
{
    std::array<Row, 1U << Bits> rows{};
    for (unsigned int bit = 0; bit < Bits; ++bit)
    {
        const bool counts = First + bit < std::size(directions);
        const Row direction = counts ? directions[First + bit] : Row{};
        for (unsigned int value = 0; value < 1U << bit; ++value)
            rows[(1U << bit) + value] = combine(rows[value], direction);
    }
    return rows;
}

constexpr std::array<std::array<Row, 16>, 8> nibbleRows = {
    makeRows<0, 4>(),  makeRows<4, 4>(),  makeRows<8, 4>(),  makeRows<12, 4>(),
    makeRows<16, 4>(), makeRows<20, 4>(), makeRows<24, 4>(), makeRows<28, 4>()};

constexpr unsigned int blockBits = 5;
constexpr unsigned int blockLength = 1U << blockBits;
using Block = std::array<std::int32_t, blockLength>;

/// The points of a block's indices, a coordinate at a time.
constexpr std::array<Block, 4> makeBlockColumns()
{
    constexpr auto rows = makeRows<0, blockBits>();
    std::array<Block, 4> columns{};
    for (unsigned int c = 0; c < columns.size(); ++c)
        for (unsigned int i = 0; i < blockLength; ++i)
            columns[c][i] = static_cast<std::int32_t>(rows[i][c]);
    return columns;
}

constexpr std::array<Block, 4> blockColumns = makeBlockColumns();

/// The nearest T, but below 1, which a float's rounding would reach.
template <class T>
T getScaled(std::int32_t bits)
{
    constexpr T greatest = 1 - std::numeric_limits<T>::epsilon() / 2;
    return std::min(static_cast<T>(bits) * static_cast<T>(1. / 2147483648.), greatest);
}

/// One coordinate of a whole block; the count is a constant for the sake of the compiler.
template <class T>
void fillColumn(const Block& column, std::uint32_t offset, T* values)
{
    const auto bits = static_cast<std::int32_t>(offset);
    for (unsigned int i = 0; i < blockLength; ++i)
        values[i] = getScaled<T>(column[i] ^ bits);
}

template <class T>
void fillColumnPart(const Block& column, std::uint32_t offset, unsigned int start,
                    unsigned int count, T* values)
{
    T whole[blockLength];
    fillColumn(column, offset, whole);
    std::copy_n(whole + start, count, values);
}

} // namespace

Row getPoint(std::uint32_t index)
{
    Row point = nibbleRows[0][index & 15];
    for (unsigned int nibble = 1; nibble < nibbleRows.size(); ++nibble)
        point = combine(point, nibbleRows[nibble][index >> 4 * nibble & 15]);
    return point;
}

template <class T>
T getFraction(std::uint32_t bits)
{
    return getScaled<T>(static_cast<std::int32_t>(bits));
}

template <class T>
void fill(std::uint32_t first, unsigned int count, T* const* array)
{
    for (unsigned int done = 0; done < count;)
    {
        const unsigned int start = (first + done) % blockLength;
        const unsigned int length = std::min(count - done, blockLength - start);
        const Row offset = getPoint(first + done - start);
        for (unsigned int c = 0; c < blockColumns.size(); ++c)
            if (length == blockLength)
                fillColumn(blockColumns[c], offset[c], array[c] + done);
            else
                fillColumnPart(blockColumns[c], offset[c], start, length, array[c] + done);
        done += length;
    }
}

template void fill(std::uint32_t, unsigned int, float* const*);
template void fill(std::uint32_t, unsigned int, double* const*);
template float getFraction(std::uint32_t);
template double getFraction(std::uint32_t);

} // namespace Kr::Niederreiter
