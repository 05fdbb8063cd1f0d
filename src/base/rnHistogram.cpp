#include <base/internal/random/histogramPicture.h>
#include <base/raise.h>
#include <base/rnEx.h>
#include <base/rnHistogram.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

namespace Kr
{

namespace
{

template <class... Arguments>
[[noreturn]] void raiseBad(const char* format, Arguments... arguments)
{
    char problem[160];
    std::snprintf(problem, sizeof problem, format, arguments...);
    raise<RnEx::BadHistogram>(KR_HERE, problem);
}

template <class T>
double getChecked(T weight)
{
    const auto value = static_cast<double>(weight);
    if (!(value >= 0. && std::isfinite(value)))
        raiseBad("weight %g is negative or not finite.", value);
    return value;
}

template <class T>
std::vector<double> getChecked(const T* weights, std::size_t count)
{
    if (weights == nullptr)
        raiseBad("the weights are %s.", "null");
    std::vector<double> result(count);
    std::transform(weights, weights + count, result.begin(), [](T w) { return getChecked(w); });
    const double greatest = *std::max_element(result.begin(), result.end());
    if (!(greatest > 0.))
        raiseBad("all %llu weights are 0.", static_cast<unsigned long long>(count));
    if (!std::isfinite(std::accumulate(result.begin(), result.end(), 0.)))
        for (double& weight : result) // only the ratios count: keep them
            weight /= greatest;
    return result;
}

template <class T>
double getWidth(const RnBins<T>& bins)
{
    return (static_cast<double>(bins.getMax()) - static_cast<double>(bins.getMin())) /
           bins.getCount();
}

double getSum(const std::vector<double>& weights)
{
    return std::accumulate(weights.begin(), weights.end(), 0.);
}

/// What the new bins have of the old ones: `add(old, new, share)` for each pair that overlaps.
/// Edges are compared as whole numbers, in units of the range divided by both counts.
template <class Add>
void visitOverlaps(unsigned int oldCount, unsigned int newCount, Add add)
{
    std::uint64_t position = 0;
    for (unsigned int i = 0, j = 0; i < oldCount && j < newCount;)
    {
        const std::uint64_t oldEnd = std::uint64_t(i + 1) * newCount;
        const std::uint64_t newEnd = std::uint64_t(j + 1) * oldCount;
        const std::uint64_t end = std::min(oldEnd, newEnd);
        add(i, j, static_cast<double>(end - position) / newCount);
        position = end;
        i += oldEnd == end ? 1 : 0;
        j += newEnd == end ? 1 : 0;
    }
}

} // namespace

template <class T>
RnBins<T>::RnBins(T min, T max, unsigned int count)
    : _min(min)
    , _max(max)
    , _count(count)
{
    constexpr unsigned int maxCount = 1U << 28;
    if (!(min < max) || !std::isfinite(max - min))
        raiseBad("the range from %g to %g is empty or not finite.", static_cast<double>(min),
                 static_cast<double>(max));
    if (count == 0 || count > maxCount)
        raiseBad("there are %u bins, and may be 1 to %u.", count, maxCount);
    if (!(getEdge(1) > min) || !(getEdge(count - 1) < max))
        raiseBad("%u bins from %g to %g are too narrow.", count, static_cast<double>(min),
                 static_cast<double>(max));
}

template <class T>
T RnBins<T>::getEdge(unsigned int bin) const
{
    if (bin >= _count)
        return _max;
    const auto min = static_cast<double>(_min);
    return static_cast<T>(min + (static_cast<double>(_max) - min) * bin / _count);
}

template <class T>
unsigned int RnBins<T>::getBin(T x) const
{
    const double place = (static_cast<double>(x) - static_cast<double>(_min)) / getWidth(*this);
    auto bin = static_cast<unsigned int>(std::min(std::max(place, 0.), _count - 1.));
    while (bin > 0 && x < getEdge(bin)) // rounding went one too far
        --bin;
    while (bin + 1 < _count && x >= getEdge(bin + 1))
        ++bin;
    return bin;
}

template <class T>
T RnBins<T>::getValue(unsigned int bin, double place) const
{
    const T lower = getEdge(bin);
    const T upper = getEdge(bin + 1);
    const auto start = static_cast<double>(lower);
    const T value = static_cast<T>(start + place * (static_cast<double>(upper) - start));
    return std::max(lower, std::min(value, std::nextafter(upper, lower)));
}

// --- one dimension
// --------------------------------------------------------------------------------

template <class T>
RnHistogram<T>::RnHistogram(T min, T max, unsigned int binCount)
    : _bins(min, max, binCount)
    , _weights(binCount, 0.)
    , _outside(0.)
{
}

template <class T>
RnHistogram<T>::RnHistogram(T min, T max, unsigned int binCount, const T* weights)
    : _bins(min, max, binCount)
    , _weights(getChecked(weights, binCount))
    , _outside(0.)
{
}

template <class T>
double RnHistogram<T>::getTotal() const
{
    return getSum(_weights);
}

template <class T>
void RnHistogram<T>::add(T x, T weight)
{
    (_bins.contains(x) ? _weights[_bins.getBin(x)] : _outside) += getChecked(weight);
}

template <class T>
void RnHistogram<T>::fill(RnRng<T>& rng, unsigned int n)
{
    for (unsigned int i = 0; i < n; ++i)
        add(rng());
}

template <class T>
RnHistogram<T> RnHistogram<T>::getResampled(unsigned int binCount) const
{
    RnHistogram result(_bins.getMin(), _bins.getMax(), binCount);
    visitOverlaps(_bins.getCount(), binCount,
                  [&](unsigned int i, unsigned int j, double share)
                  { result._weights[j] += share * _weights[i]; });
    result._outside = _outside;
    return result;
}

template <class T>
T RnHistogram<T>::getPdf(T x) const
{
    const double total = getTotal();
    if (!_bins.contains(x) || !(total > 0.))
        return 0;
    return static_cast<T>(_weights[_bins.getBin(x)] / total / getWidth(_bins));
}

template <class T>
void RnHistogram<T>::writePicture(std::ostream& os) const
{
    constexpr unsigned int maxCount = 512;
    if (_weights.size() > maxCount)
        writeBars(os, getResampled(maxCount)._weights);
    else
        writeBars(os, _weights);
}

// --- two dimensions
// -------------------------------------------------------------------------------

template <class T>
RnBiHistogram<T>::RnBiHistogram(const RnBins<T>& xBins, const RnBins<T>& yBins)
    : _xBins(xBins)
    , _yBins(yBins)
    , _weights(std::size_t(xBins.getCount()) * yBins.getCount(), 0.)
    , _outside(0.)
{
}

template <class T>
RnBiHistogram<T>::RnBiHistogram(const RnBins<T>& xBins, const RnBins<T>& yBins, const T* weights)
    : _xBins(xBins)
    , _yBins(yBins)
    , _weights(getChecked(weights, std::size_t(xBins.getCount()) * yBins.getCount()))
    , _outside(0.)
{
}

template <class T>
double RnBiHistogram<T>::getTotal() const
{
    return getSum(_weights);
}

template <class T>
std::size_t RnBiHistogram<T>::getIndex(unsigned int i, unsigned int j) const
{
    return std::size_t(j) * _xBins.getCount() + i;
}

template <class T>
void RnBiHistogram<T>::add(T x, T y, T weight)
{
    const bool isInside = _xBins.contains(x) && _yBins.contains(y);
    (isInside ? _weights[getIndex(_xBins.getBin(x), _yBins.getBin(y))] : _outside) +=
        getChecked(weight);
}

template <class T>
void RnBiHistogram<T>::fill(RnBiRng<T>& rng, unsigned int n)
{
    for (unsigned int i = 0; i < n; ++i)
    {
        T x = 0, y = 0;
        rng.getSample(x, y);
        add(x, y);
    }
}

template <class T>
RnBiHistogram<T> RnBiHistogram<T>::getResampled(unsigned int xCount, unsigned int yCount) const
{
    RnBiHistogram result(RnBins<T>(_xBins.getMin(), _xBins.getMax(), xCount),
                         RnBins<T>(_yBins.getMin(), _yBins.getMax(), yCount));
    const auto addColumns = [&](unsigned int oldRow, unsigned int newRow, double rowShare)
    {
        visitOverlaps(_xBins.getCount(), xCount,
                      [&](unsigned int i, unsigned int j, double share)
                      {
                          result._weights[result.getIndex(j, newRow)] +=
                              rowShare * share * _weights[getIndex(i, oldRow)];
                      });
    };
    visitOverlaps(_yBins.getCount(), yCount, addColumns);
    result._outside = _outside;
    return result;
}

template <class T>
T RnBiHistogram<T>::getPdf(T x, T y) const
{
    const double total = getTotal();
    if (!_xBins.contains(x) || !_yBins.contains(y) || !(total > 0.))
        return 0;
    const double share = _weights[getIndex(_xBins.getBin(x), _yBins.getBin(y))] / total;
    return static_cast<T>(share / getWidth(_xBins) / getWidth(_yBins));
}

template <class T>
void RnBiHistogram<T>::writePicture(std::ostream& os) const
{
    writePixels(os, _weights, _xBins.getCount(), _yBins.getCount());
}

template <class T>
void RnBiHistogram<T>::writeScene(std::ostream& os) const
{
    const auto getRange = [](const RnBins<T>& bins)
    { return static_cast<double>(bins.getMax()) - static_cast<double>(bins.getMin()); };
    const double greatest = *std::max_element(_weights.begin(), _weights.end());
    const double scale = std::max(getRange(_xBins), getRange(_yBins)) / greatest;
    BoxWriter boxes(os);
    for (unsigned int j = 0; j < _yBins.getCount(); ++j)
        for (unsigned int i = 0; i < _xBins.getCount(); ++i)
            if (const double weight = _weights[getIndex(i, j)]; weight > 0.)
                boxes.write({static_cast<double>(_xBins.getEdge(i)),
                             static_cast<double>(_yBins.getEdge(j)), 0.},
                            {static_cast<double>(_xBins.getEdge(i + 1)),
                             static_cast<double>(_yBins.getEdge(j + 1)), weight * scale});
}

template class RnBins<float>;
template class RnBins<double>;
template class RnHistogram<float>;
template class RnHistogram<double>;
template class RnBiHistogram<float>;
template class RnBiHistogram<double>;

} // namespace Kr
