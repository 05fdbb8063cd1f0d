#pragma once

/// @file
/// The points of Niederreiter's sequence in base 2, in four dimensions, as 31-bit fractions.

#include <base/internal/random/lanes.h>

#include <array>
#include <cstdint>

namespace Kr::Niederreiter
{

/// What a bit of the index contributes to the four coordinates.
using Row = std::array<std::uint32_t, 4>;

/// What each bit of the index contributes. They come from the polynomials x, x + 1, x^2 + x + 1 and
/// x^3 + x + 1 over the field of two elements.
inline constexpr Row directions[31] = {
    {1073741824U, 1073741824U, 1610612736U, 1879048192U},
    {536870912U, 1610612736U, 1207959552U, 1644167168U},
    {268435456U, 1342177280U, 939524096U, 1174405120U},
    {134217728U, 2013265920U, 2046820352U, 503316480U},
    {67108864U, 1140850688U, 1577058304U, 742391808U},
    {33554432U, 1711276032U, 914358272U, 1522532352U},
    {16777216U, 1426063360U, 1702887424U, 935329792U},
    {8388608U, 2139095040U, 1260388352U, 2106064896U},
    {4194304U, 1077936128U, 1046478848U, 1800929280U},
    {2097152U, 1616904192U, 2127036416U, 1152909312U},
    {1048576U, 1347420160U, 1572339712U, 456196096U},
    {524288U, 2021130240U, 827981824U, 639827968U},
    {262144U, 1145307136U, 1614675968U, 1548156928U},
    {131072U, 1717960704U, 1216249856U, 952508416U},
    {65536U, 1431633920U, 945651712U, 1908695040U},
    {32768U, 2147450880U, 2050039808U, 1669980160U},
    {16384U, 1073758208U, 1583374336U, 1192936448U},
    {8192U, 1610637312U, 919095296U, 511552512U},
    {4096U, 1342197760U, 1706571776U, 754088960U},
    {2048U, 2013296640U, 1264220672U, 1538054272U},
    {1024U, 1140868096U, 1044274688U, 924431744U},
    {512U, 1711302144U, 2130622080U, 2088397696U},
    {256U, 1426085120U, 1574823296U, 1794429712U},
    {128U, 2139127680U, 823225120U, 1168671280U},
    {64U, 1077952576U, 1610636896U, 458752112U},
    {32U, 1616928864U, 1207973576U, 649592930U},
    {16U, 1347440720U, 939550136U, 1563492422U},
    {8U, 2021161080U, 2046839642U, 941817886U},
    {4U, 1145324612U, 1577074238U, 1879506988U},
    {2U, 1717986918U, 914390782U, 1644568666U},
    {1U, 1431655765U, 1702911453U, 1174691895U},
};

/// The coordinates of an index's point; the index's highest bit does not count.
Lanes<std::uint32_t> getPoint(std::uint32_t index);

/// The same as fractions below 1.
template <class T>
void getPoint(std::uint32_t index, T* point);

/// Writes the points of `count` indices from `first` on, coordinate c into `array[c]`, below 1.
template <class T>
void fill(std::uint32_t first, unsigned int count, T* const* array);

/// The same mirrored: bit 0 is a fraction's highest.
void fillMirrored(std::uint32_t first, unsigned int count, std::uint32_t* const* array);

extern template void getPoint(std::uint32_t, float*);
extern template void getPoint(std::uint32_t, double*);
extern template void fill(std::uint32_t, unsigned int, float* const*);
extern template void fill(std::uint32_t, unsigned int, double* const*);

} // namespace Kr::Niederreiter
