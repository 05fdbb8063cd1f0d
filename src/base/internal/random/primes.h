#pragma once

namespace Kr
{

/// The default bases of Halton's and Hammersley's points, in the order of the coordinates.
inline constexpr unsigned int haltonPrimes[] = {2, 3, 5, 7};

} // namespace Kr
