#include <base/internal/random/niederreiterTable.h>

#include <algorithm>
#include <cstring>
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

constexpr std::array<std::array<Row, 256>, 4> byteRows = {makeRows<0, 8>(), makeRows<8, 8>(),
                                                          makeRows<16, 8>(), makeRows<24, 8>()};

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

template <class T>
constexpr T scale = static_cast<T>(1. / 2147483648.);

/// A float's rounding would reach 1.
template <class T>
constexpr T greatest = 1 - std::numeric_limits<T>::epsilon() / 2;

template <class T>
T getScaled(std::int32_t bits)
{
    return std::min(static_cast<T>(bits) * scale<T>, greatest<T>);
}

/// The four coordinates at once.
template <class T>
using Lanes [[gnu::vector_size(4 * sizeof(T))]] = T;

inline Lanes<std::int32_t> getLanes(std::uint32_t index)
{
    const Row* const rows[] = {&byteRows[0][index & 255], &byteRows[1][index >> 8 & 255],
                               &byteRows[2][index >> 16 & 255], &byteRows[3][index >> 24]};
    Lanes<std::int32_t> point{};
    for (const Row* const row : rows)
    {
        Lanes<std::int32_t> lanes;
        std::memcpy(&lanes, row, sizeof lanes);
        point ^= lanes;
    }
    return point;
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
    const Lanes<std::int32_t> lanes = getLanes(index);
    Row point;
    std::memcpy(&point, &lanes, sizeof point);
    return point;
}

template <class T>
void getPoint(std::uint32_t index, T* point)
{
    const Lanes<std::int32_t> bits = getLanes(index);
    Lanes<T> lanes = __builtin_convertvector(bits, Lanes<T>) * scale<T>;
    lanes = lanes < greatest<T> ? lanes : greatest<T> - Lanes<T>{};
    std::memcpy(point, &lanes, sizeof lanes);
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
template void getPoint(std::uint32_t, float*);
template void getPoint(std::uint32_t, double*);

} // namespace Kr::Niederreiter
