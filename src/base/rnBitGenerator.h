#pragma once

/// @file
/// Any of the library's uniform generators as a uniform random bit generator of the standard
/// library, for its shuffles and distributions.
/// @code{.cpp}
/// #include <base/rnLecuyerUniformRng.h>
///
/// #include <algorithm>
/// #include <random>
/// #include <vector>
///
/// double shuffleAndDraw(std::vector<int>& cards)
/// {
///     Kr::RnLecuyerUniformRng<double> uniform;
///     Kr::RnBitGenerator<double> bits(&uniform);
///     std::shuffle(cards.begin(), cards.end(), bits);
///     return std::gamma_distribution<double>(2., 1.)(bits);
/// }
/// @endcode
/// The 32 bits of a value are the highest 16 of two samples. That suits sources with at least 20
/// good bits; of low-discrepancy sequences nothing random remains.
///
/// Pitfall: what `std::shuffle` and the distributions make of the bits differs between standard
/// libraries; only the bits are the same everywhere.

#include <base/rnRng.h>

#include <cstdint>

namespace Kr
{

/// The range of `RnBitGenerator`'s words, whatever the type of its source.
struct RnBitRange
{
    using result_type = std::uint32_t;

    static constexpr result_type min() { return 0; }
    static constexpr result_type max() { return 0xFFFFFFFFU; }
};

template <class T>
class RnBitGenerator : public RnBitRange
{
public:
    /// Borrows the source.
    /// @throws ExInternalError if it is null
    explicit RnBitGenerator(RnRng<T>* uniRng);

    /// Samples below 0 count as 0, samples from 1 on as just below 1.
    result_type operator()();

private:
    RnRng<T>* _uniRng;
};

extern template class KR_BASE_API RnBitGenerator<float>;
extern template class KR_BASE_API RnBitGenerator<double>;

} // namespace Kr
