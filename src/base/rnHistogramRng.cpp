#include <base/assert.h>
#include <base/internal/random/binTables.h>
#include <base/raise.h>
#include <base/rnEx.h>
#include <base/rnHistogramRng.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace Kr
{

namespace
{

template <class Histogram>
const Histogram& getChecked(const void* source, const Histogram& histogram)
{
    KR_ASSERT_TEXT(source != nullptr, "_uniRng", __LINE__);
    constexpr double leastTotal = 1e-280; // below, quotients overflow
    if (!(histogram.getTotal() > leastTotal))
        raise<RnEx::BadHistogram>(KR_HERE, "there is no weight, or too little.");
    return histogram;
}

template <class T>
double getClamped(T u)
{
    return u > 0 ? std::min(static_cast<double>(u), 1.) : 0.; // a NaN becomes 0
}

/// Above so many bins one sample does not have the bits to choose one of them.
constexpr unsigned int coarseCount = 4096;

/// How many samples of the source a bin and a place take.
unsigned int getDrawCount(const AliasTable& alias)
{
    return alias.getSize() > coarseCount ? 3 : 2;
}

template <class T>
BinPlace getPlace(const AliasTable& alias, const T* uniform)
{
    double u = getClamped(*uniform++);
    if (alias.getSize() > coarseCount)
        u = (std::floor(std::min(u * coarseCount, coarseCount - 1.)) + getClamped(*uniform++)) /
            coarseCount;
    const auto column = static_cast<std::size_t>(u * static_cast<double>(alias.getSize()));
    return alias.get(std::min(column, alias.getSize() - 1), getClamped(*uniform));
}

/// Calls `use` with each group of `drawCount` samples, `n` times, taking them in blocks.
template <class T, class Use>
void visitDraws(RnRng<T>& rng, unsigned int n, unsigned int drawCount, Use use)
{
    constexpr unsigned int blockLength = 128;
    T uniform[blockLength * 4] = {};
    while (n != 0)
    {
        const unsigned int count = std::min(n, blockLength);
        rng.getSequence(count * drawCount, uniform);
        for (unsigned int i = 0; i < count; ++i)
            use(uniform + i * drawCount);
        n -= count;
    }
}

} // namespace

template <class T>
struct RnHistogramRng<T>::Tables
{
    Tables(const RnHistogram<T>& source, Method method)
        : histogram(source)
        , total(source.getTotal())
        , cumulative(source.getWeights())
    {
        if (method == Alias)
            alias.emplace(source.getWeights());
    }

    RnHistogram<T> histogram;
    double total;
    CumulativeTable cumulative;
    std::optional<AliasTable> alias;
};

template <class T>
RnHistogramRng<T>::RnHistogramRng(RnRng<T>* uniRng, const RnHistogram<T>& histogram, Method method)
    : _uniRng(uniRng)
    , _method(method)
    , _tables(std::make_unique<const Tables>(getChecked(uniRng, histogram), method))
{
}

template <class T>
RnHistogramRng<T>::~RnHistogramRng() = default;

template <class T>
T RnHistogramRng<T>::operator()()
{
    if (_method == Inverse)
        return getInverse((*_uniRng)());
    T uniform[3] = {};
    std::generate_n(uniform, getDrawCount(*_tables->alias), [this] { return (*_uniRng)(); });
    return getByAlias(uniform);
}

template <class T>
void RnHistogramRng<T>::getSample(T& x)
{
    x = (*this)();
}

template <class T>
void RnHistogramRng<T>::getSequence(unsigned int n, T* array)
{
    KR_ASSERT(array != nullptr || n == 0);
    if (n == 0)
        return;
    if (_method == Inverse)
    {
        _uniRng->getSequence(n, array);
        std::transform(array, array + n, array, [this](T u) { return getInverse(u); });
        return;
    }
    visitDraws(*_uniRng, n, getDrawCount(*_tables->alias),
               [&](const T* uniform) { *array++ = getByAlias(uniform); });
}

template <class T>
T RnHistogramRng<T>::getByAlias(const T* uniform) const
{
    const BinPlace found = getPlace(*_tables->alias, uniform);
    return _tables->histogram.getBins().getValue(static_cast<unsigned int>(found.bin), found.place);
}

template <class T>
T RnHistogramRng<T>::getInverse(T u) const
{
    const BinPlace found = _tables->cumulative.get(getClamped(u));
    return _tables->histogram.getBins().getValue(static_cast<unsigned int>(found.bin), found.place);
}

template <class T>
T RnHistogramRng<T>::getCumulative(T x) const
{
    const RnBins<T>& bins = _tables->histogram.getBins();
    if (!(x > bins.getMin()))
        return 0;
    if (x >= bins.getMax())
        return 1;
    const unsigned int bin = bins.getBin(x);
    const auto lower = static_cast<double>(bins.getEdge(bin));
    const auto upper = static_cast<double>(bins.getEdge(bin + 1));
    const double place = (static_cast<double>(x) - lower) / (upper - lower);
    const double below =
        _tables->cumulative.getSum(bin) + place * _tables->histogram.getWeights()[bin];
    return static_cast<T>(below / _tables->cumulative.getTotal());
}

template <class T>
T RnHistogramRng<T>::getEfficientWidth() const
{
    return getEfficientMax() - getEfficientMin();
}

template <class T>
T RnHistogramRng<T>::getEfficientMin() const
{
    return _tables->histogram.getBins().getMin();
}

template <class T>
T RnHistogramRng<T>::getEfficientMax() const
{
    return _tables->histogram.getBins().getMax();
}

template <class T>
T RnHistogramRng<T>::getEfficientFraction() const
{
    return 1;
}

template <class T>
T RnHistogramRng<T>::getPdf(T x) const
{
    const RnBins<T>& bins = _tables->histogram.getBins();
    if (!bins.contains(x))
        return 0;
    const double share = _tables->histogram.getWeights()[bins.getBin(x)] / _tables->total;
    return static_cast<T>(share * bins.getCount() / static_cast<double>(getEfficientWidth()));
}

template <class T>
void RnHistogramRng<T>::restart()
{
    _uniRng->restart();
}

template <class T>
char const* RnHistogramRng<T>::getName() const
{
    return "Histogram";
}

// --- two dimensions
// -------------------------------------------------------------------------------

template <class T>
struct RnHistogramBiRng<T>::Tables
{
    Tables(const RnBiHistogram<T>& source, bool isAlias)
        : histogram(source)
        , total(source.getTotal())
    {
        const std::vector<double>& weights = source.getWeights();
        if (isAlias)
            alias.emplace(weights);
        const std::size_t width = source.getXBins().getCount();
        std::vector<double> rowSums;
        for (auto row = weights.begin(); row != weights.end();
             row += static_cast<std::ptrdiff_t>(width))
        {
            columns.emplace_back(
                std::vector<double>(row, row + static_cast<std::ptrdiff_t>(width)));
            rowSums.push_back(columns.back().getTotal());
        }
        rows.emplace(rowSums);
    }

    RnBiHistogram<T> histogram;
    double total;
    std::optional<CumulativeTable> rows;
    std::vector<CumulativeTable> columns; ///< of each row
    std::optional<AliasTable> alias;      ///< of all bins
};

template <class T>
RnHistogramBiRng<T>::RnHistogramBiRng(RnRng<T>* uniRng, const RnBiHistogram<T>& histogram)
    : _uniRng(uniRng)
    , _uniBiRng(nullptr)
    , _tables(std::make_unique<const Tables>(getChecked(uniRng, histogram), true))
{
}

template <class T>
RnHistogramBiRng<T>::RnHistogramBiRng(RnBiRng<T>* uniRng, const RnBiHistogram<T>& histogram)
    : _uniRng(nullptr)
    , _uniBiRng(uniRng)
    , _tables(std::make_unique<const Tables>(getChecked(uniRng, histogram), false))
{
}

template <class T>
RnHistogramBiRng<T>::~RnHistogramBiRng() = default;

template <class T>
void RnHistogramBiRng<T>::getByAlias(const T* uniform, T& x, T& y) const
{
    const AliasTable& alias = *_tables->alias;
    const BinPlace found = getPlace(alias, uniform);
    const RnBins<T>& xBins = _tables->histogram.getXBins();
    const auto i = static_cast<unsigned int>(found.bin % xBins.getCount());
    const auto j = static_cast<unsigned int>(found.bin / xBins.getCount());
    x = xBins.getValue(i, found.place);
    y = _tables->histogram.getYBins().getValue(j, getClamped(uniform[getDrawCount(alias)]));
}

template <class T>
void RnHistogramBiRng<T>::getSample(T& x, T& y)
{
    if (_uniRng != nullptr)
    {
        T uniform[4] = {};
        std::generate_n(uniform, getDrawCount(*_tables->alias) + 1,
                        [this] { return (*_uniRng)(); });
        return getByAlias(uniform, x, y);
    }
    T u = 0, v = 0;
    _uniBiRng->getSample(u, v);
    getInverse(u, v, x, y);
}

template <class T>
void RnHistogramBiRng<T>::getSequence(unsigned int n, T* array0, T* array1)
{
    KR_ASSERT((array0 != nullptr && array1 != nullptr) || n == 0);
    if (n == 0)
        return;
    if (_uniRng == nullptr)
    {
        _uniBiRng->getSequence(n, array0, array1);
        for (unsigned int i = 0; i < n; ++i)
            getInverse(array0[i], array1[i], array0[i], array1[i]);
        return;
    }
    visitDraws(*_uniRng, n, getDrawCount(*_tables->alias) + 1,
               [&](const T* uniform) { getByAlias(uniform, *array0++, *array1++); });
}

template <class T>
void RnHistogramBiRng<T>::getInverse(T u, T v, T& x, T& y) const
{
    const BinPlace row = _tables->rows->get(getClamped(v));
    const BinPlace column = _tables->columns[row.bin].get(getClamped(u));
    x = _tables->histogram.getXBins().getValue(static_cast<unsigned int>(column.bin), column.place);
    y = _tables->histogram.getYBins().getValue(static_cast<unsigned int>(row.bin), row.place);
}

template <class T>
void RnHistogramBiRng<T>::getEfficientWidth(T& x, T& y) const
{
    const RnBiHistogram<T>& histogram = _tables->histogram;
    x = histogram.getXBins().getMax() - histogram.getXBins().getMin();
    y = histogram.getYBins().getMax() - histogram.getYBins().getMin();
}

template <class T>
void RnHistogramBiRng<T>::getEfficientMin(T& x, T& y) const
{
    x = _tables->histogram.getXBins().getMin();
    y = _tables->histogram.getYBins().getMin();
}

template <class T>
void RnHistogramBiRng<T>::getEfficientMax(T& x, T& y) const
{
    x = _tables->histogram.getXBins().getMax();
    y = _tables->histogram.getYBins().getMax();
}

template <class T>
T RnHistogramBiRng<T>::getEfficientFraction() const
{
    return 1;
}

template <class T>
T RnHistogramBiRng<T>::getPdf(T x, T y) const
{
    const RnBins<T>& xBins = _tables->histogram.getXBins();
    const RnBins<T>& yBins = _tables->histogram.getYBins();
    if (!xBins.contains(x) || !yBins.contains(y))
        return 0;
    const std::size_t bin = std::size_t(yBins.getBin(y)) * xBins.getCount() + xBins.getBin(x);
    const double share = _tables->histogram.getWeights()[bin] / _tables->total;
    T width = 0, height = 0;
    getEfficientWidth(width, height);
    return static_cast<T>(share * xBins.getCount() / static_cast<double>(width) * yBins.getCount() /
                          static_cast<double>(height));
}

template <class T>
void RnHistogramBiRng<T>::restart()
{
    if (_uniRng != nullptr)
        _uniRng->restart();
    else
        _uniBiRng->restart();
}

template <class T>
char const* RnHistogramBiRng<T>::getName() const
{
    return "Bi Histogram";
}

template class RnHistogramRng<float>;
template class RnHistogramRng<double>;
template class RnHistogramBiRng<float>;
template class RnHistogramBiRng<double>;

} // namespace Kr
