#pragma once

/// @file
/// Histograms in one and two dimensions: built from weights or filled from any generator,
/// resampled, dumped as pictures, and sampled by `RnHistogramRng` and `RnHistogramBiRng`.
/// @code
/// Kr::RnLecuyerUniformRng<double> uniform;
/// Kr::RnGaussianRng<double> gaussian(&uniform);
/// Kr::RnHistogram<double> histogram(-4., 4., 64);
/// histogram.fill(gaussian, 100000);
/// std::ofstream file("gaussian.svg");
/// histogram.writePicture(file); // any browser shows it
/// @endcode
/// Bins are equally wide. A value at an edge belongs to the bin above, at the very end to the last.
///
/// Pitfalls: what lies outside the range is counted in `getOutside`, and in nothing else. `getPdf`
/// adds up all bins at each call; that of a sampler does not.

#include <base/rnBiRng.h>
#include <base/rnRng.h>

#include <cstddef>
#include <iosfwd>
#include <vector>

namespace Kr
{

/// The bins of one coordinate.
template <class T>
class RnBins
{
public:
    /// @throws RnEx::BadHistogram if the range is empty or not finite, or there is no bin, or there
    ///     are more than 2^28 or than T can tell apart
    RnBins(T min, T max, unsigned int count);

    T getMin() const;
    T getMax() const;
    unsigned int getCount() const;
    /// The lower edge of a bin; that of `getCount()` is the upper end.
    T getEdge(unsigned int bin) const;
    /// Whether x lies in the range, ends included.
    bool contains(T x) const;
    /// The bin of a value that lies in the range.
    unsigned int getBin(T x) const;
    /// The value at a place in a bin, from 0 at its lower edge to 1 just below its upper edge.
    T getValue(unsigned int bin, double place) const;

private:
    T _min;
    T _max;
    unsigned int _count;
};

template <class T>
T RnBins<T>::getMin() const
{
    return _min;
}

template <class T>
T RnBins<T>::getMax() const
{
    return _max;
}

template <class T>
unsigned int RnBins<T>::getCount() const
{
    return _count;
}

template <class T>
bool RnBins<T>::contains(T x) const
{
    return _min <= x && x <= _max;
}

template <class T>
class RnHistogram
{
public:
    /// Without weight.
    /// @throws RnEx::BadHistogram for bad bins; see `RnBins`
    RnHistogram(T min, T max, unsigned int binCount);
    /// Copies `binCount` weights.
    /// @throws RnEx::BadHistogram if a weight is negative or not finite, or if all are 0
    RnHistogram(T min, T max, unsigned int binCount, const T* weights);

    const RnBins<T>& getBins() const;
    const std::vector<double>& getWeights() const;
    /// Adds up all bins.
    double getTotal() const;
    /// The weight that was added outside the range.
    double getOutside() const;

    /// Adds to the bin of `x`.
    /// @throws RnEx::BadHistogram if the weight is negative or not finite
    void add(T x, T weight = 1);
    /// Adds the next `n` samples.
    void fill(RnRng<T>& rng, unsigned int n);
    /// The same weight in other bins of the same range, spread evenly within each old bin.
    RnHistogram getResampled(unsigned int binCount) const;
    /// The density at `x`: the share of its bin by the bin's width; 0 outside, or without weight.
    T getPdf(T x) const;

    /// Writes an SVG picture, 1024 by 512: bars, the highest to the top.
    void writePicture(std::ostream& os) const;

private:
    RnBins<T> _bins;
    std::vector<double> _weights;
    double _outside;
};

template <class T>
const RnBins<T>& RnHistogram<T>::getBins() const
{
    return _bins;
}

template <class T>
const std::vector<double>& RnHistogram<T>::getWeights() const
{
    return _weights;
}

template <class T>
double RnHistogram<T>::getOutside() const
{
    return _outside;
}

template <class T>
class RnBiHistogram
{
public:
    /// Without weight.
    RnBiHistogram(const RnBins<T>& xBins, const RnBins<T>& yBins);
    /// Copies the weights, row by row: that of bin (i, j) is `weights[j * xBins.getCount() + i]`.
    /// @throws RnEx::BadHistogram if a weight is negative or not finite, or if all are 0
    RnBiHistogram(const RnBins<T>& xBins, const RnBins<T>& yBins, const T* weights);

    const RnBins<T>& getXBins() const;
    const RnBins<T>& getYBins() const;
    /// Row by row.
    const std::vector<double>& getWeights() const;
    /// Adds up all bins.
    double getTotal() const;
    /// The weight that was added outside the ranges.
    double getOutside() const;

    /// @throws RnEx::BadHistogram if the weight is negative or not finite
    void add(T x, T y, T weight = 1);
    /// Adds the next `n` pairs.
    void fill(RnBiRng<T>& rng, unsigned int n);
    /// The same weight in other bins of the same ranges, spread evenly within each old bin.
    RnBiHistogram getResampled(unsigned int xCount, unsigned int yCount) const;
    /// The density at (x, y): the share of the bin by the bin's area; 0 outside, or without weight.
    T getPdf(T x, T y) const;

    /// Writes a BMP picture, a pixel for each bin, y upwards; white is the greatest weight, and the
    /// steps are those of its square root. The stream is a binary one.
    void writePicture(std::ostream& os) const;
    /// Writes a scene in the OBJ format: a box on each bin that has weight, the highest as high as
    /// the wider of the ranges.
    void writeScene(std::ostream& os) const;

private:
    std::size_t getIndex(unsigned int i, unsigned int j) const;

    RnBins<T> _xBins;
    RnBins<T> _yBins;
    std::vector<double> _weights;
    double _outside;
};

template <class T>
const RnBins<T>& RnBiHistogram<T>::getXBins() const
{
    return _xBins;
}

template <class T>
const RnBins<T>& RnBiHistogram<T>::getYBins() const
{
    return _yBins;
}

template <class T>
const std::vector<double>& RnBiHistogram<T>::getWeights() const
{
    return _weights;
}

template <class T>
double RnBiHistogram<T>::getOutside() const
{
    return _outside;
}

extern template class KR_BASE_API RnBins<float>;
extern template class KR_BASE_API RnBins<double>;
extern template class KR_BASE_API RnHistogram<float>;
extern template class KR_BASE_API RnHistogram<double>;
extern template class KR_BASE_API RnBiHistogram<float>;
extern template class KR_BASE_API RnBiHistogram<double>;

} // namespace Kr
