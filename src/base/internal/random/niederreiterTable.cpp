#include <base/internal/random/niederreiterTable.h>
#include <base/internal/random/reversedBits.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

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

alignas(sizeof(Row)) constexpr std::array<std::array<Row, 256>, 4> byteRows = {
    makeRows<0, 8>(), makeRows<8, 8>(), makeRows<16, 8>(), makeRows<24, 8>()};

constexpr unsigned int blockBits = 5;
constexpr unsigned int blockLength = 1U << blockBits;
using Block = std::array<std::uint32_t, blockLength>;

constexpr std::uint32_t getSame(std::uint32_t bits)
{
    return bits;
}

constexpr std::uint32_t getMirrored(std::uint32_t bits)
{
    return getReversedBits(bits << 1);
}

/// The points of a block's indices, a coordinate at a time.
template <std::uint32_t (*Map)(std::uint32_t)>
constexpr std::array<Block, 4> makeBlockColumns()
{
    constexpr auto rows = makeRows<0, blockBits>();
    std::array<Block, 4> columns{};
    for (unsigned int c = 0; c < columns.size(); ++c)
        for (unsigned int i = 0; i < blockLength; ++i)
            columns[c][i] = Map(rows[i][c]);
    return columns;
}

template <std::uint32_t (*Map)(std::uint32_t)>
constexpr std::array<Block, 4> blockColumns = makeBlockColumns<Map>();

template <class T>
constexpr T scale = static_cast<T>(1. / 2147483648.);

/// A float's rounding would reach 1; a double holds all 31 bits.
constexpr float greatestFloat = 1 - std::numeric_limits<float>::epsilon() / 2;

template <class T>
T getScaled(std::uint32_t bits)
{
    const T value = static_cast<T>(static_cast<std::int32_t>(bits)) * scale<T>;
    if constexpr (std::is_same_v<T, float>)
        return std::min(value, greatestFloat);
    return value;
}

Lanes<std::uint32_t> getLanes(const Row& row)
{
    Lanes<std::uint32_t> lanes;
    std::memcpy(&lanes, &row, sizeof lanes);
    return lanes;
}

Lanes<std::uint32_t> combinePoint(std::uint32_t index)
{
    return getLanes(byteRows[0][index & 255]) ^ getLanes(byteRows[1][index >> 8 & 255]) ^
           getLanes(byteRows[2][index >> 16 & 255]) ^ getLanes(byteRows[3][index >> 24]);
}

/// One coordinate of a whole block; the count is a constant for the sake of the compiler.
template <class Value, Value (*Finish)(std::uint32_t)>
void fillColumn(const Block& column, std::uint32_t offset, Value* values)
{
    for (unsigned int i = 0; i < blockLength; ++i)
        values[i] = Finish(column[i] ^ offset);
}

/// The indices of a block share all bits but the low ones: a block is a column, combined with what
/// the others contribute.
template <class Value, Value (*Finish)(std::uint32_t), std::uint32_t (*Map)(std::uint32_t)>
void fillColumns(std::uint32_t first, unsigned int count, Value* const* array)
{
    for (unsigned int done = 0; done < count;)
    {
        const unsigned int start = (first + done) % blockLength;
        const unsigned int length = std::min(count - done, blockLength - start);
        const Lanes<std::uint32_t> offset = combinePoint(first + done - start);
        for (unsigned int c = 0; c < 4; ++c)
        {
            const Block& column = blockColumns<Map>[c];
            if (length == blockLength)
            {
                fillColumn<Value, Finish>(column, Map(offset[c]), array[c] + done);
                continue;
            }
            Value whole[blockLength];
            fillColumn<Value, Finish>(column, Map(offset[c]), whole);
            std::copy_n(whole + start, length, array[c] + done);
        }
        done += length;
    }
}

} // namespace

Lanes<std::uint32_t> getPoint(std::uint32_t index)
{
    return combinePoint(index);
}

template <class T>
void getPoint(std::uint32_t index, T* point)
{
    const auto bits = reinterpret_cast<Lanes<std::int32_t>>(combinePoint(index));
    Lanes<T> lanes = __builtin_convertvector(bits, Lanes<T>) * scale<T>;
    if constexpr (std::is_same_v<T, float>)
        lanes = lanes < greatestFloat ? lanes : greatestFloat - Lanes<T>{};
    std::memcpy(point, &lanes, sizeof lanes);
}

template <class T>
void fill(std::uint32_t first, unsigned int count, T* const* array)
{
    fillColumns<T, getScaled<T>, getSame>(first, count, array);
}

void fillMirrored(std::uint32_t first, unsigned int count, std::uint32_t* const* array)
{
    fillColumns<std::uint32_t, getSame, getMirrored>(first, count, array);
}

template void getPoint(std::uint32_t, float*);
template void getPoint(std::uint32_t, double*);
template void fill(std::uint32_t, unsigned int, float* const*);
template void fill(std::uint32_t, unsigned int, double* const*);

} // namespace Kr::Niederreiter
