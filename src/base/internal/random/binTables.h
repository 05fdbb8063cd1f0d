#pragma once

/// @file
/// Two ways from uniform numbers to the bins of a histogram.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Kr
{

/// A bin, and where in it, from 0 to 1.
struct BinPlace
{
    std::size_t bin;
    double place;
};

/// The alias method: any number of bins in the same time. A. J. Walker: An Efficient Method for
/// Generating Discrete Random Variables with General Distributions, ACM Transactions on
/// Mathematical Software 3, 1977; built as in M. D. Vose: A Linear Algorithm for Generating Random
/// Numbers with a Given Distribution, IEEE Transactions on Software Engineering 17, 1991.
class AliasTable
{
public:
    /// Weights are finite and not negative, and one is positive.
    explicit AliasTable(const std::vector<double>& weights);

    std::size_t getSize() const { return _columns.size(); }
    /// `column` is below the size. `u`, from 0 to 1, decides between the column's bin and its
    /// alias; what is left of it is the place. A bin without weight never comes out.
    BinPlace get(std::size_t column, double u) const;

private:
    struct Column
    {
        std::uint32_t threshold; ///< below it, in 2^-32, the column's own bin
        std::uint32_t alias;
    };

    std::vector<Column> _columns;
};

/// The inverse of the distribution: increasing, so that stratified numbers stay stratified. A guide
/// table leaves a bin or two to search on average: H. C. Chen, Y. Asau: On Generating Random
/// Variates from an Empirical Distribution, AIIE Transactions 6, 1974.
class CumulativeTable
{
public:
    /// Weights are finite and not negative.
    explicit CumulativeTable(const std::vector<double>& weights);

    double getTotal() const { return _sums.back(); }
    /// The sum of the weights of the bins before this one.
    double getSum(std::size_t bin) const { return _sums[bin]; }
    /// The bin and the place below which the fraction `u`, from 0 to 1, of all weight lies. A bin
    /// without weight never comes out. The total is above 0.
    BinPlace get(double u) const;

private:
    std::size_t getGuideIndex(double sum) const;

    std::vector<double> _sums;
    std::vector<std::uint32_t> _guide; ///< the first sum of each part of the total
    double _guideScale;
    std::size_t _lastBin; ///< the last bin that has weight
};

} // namespace Kr
