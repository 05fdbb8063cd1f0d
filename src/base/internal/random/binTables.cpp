#include <base/internal/random/binTables.h>

#include <algorithm>
#include <cassert>
#include <numeric>

namespace Kr
{

namespace
{

constexpr double two32 = 4294967296.;

} // namespace

AliasTable::AliasTable(const std::vector<double>& weights)
    : _columns(weights.size())
{
    const double mean =
        std::accumulate(weights.begin(), weights.end(), 0.) / static_cast<double>(weights.size());
    assert(mean > 0.);
    std::vector<double> rest(weights.size());
    std::vector<std::uint32_t> small, large;
    for (std::uint32_t bin = 0; bin < weights.size(); ++bin)
    {
        rest[bin] = weights[bin] / mean;
        (rest[bin] < 1. ? small : large).push_back(bin);
    }
    // Each small column is filled up by a large bin, which may become small by that.
    while (!small.empty() && !large.empty())
    {
        const std::uint32_t bin = small.back();
        const std::uint32_t alias = large.back();
        small.pop_back();
        _columns[bin] = {static_cast<std::uint32_t>(std::max(0., rest[bin]) * two32), alias};
        rest[alias] -= 1. - rest[bin];
        if (rest[alias] < 1.)
        {
            large.pop_back();
            small.push_back(alias);
        }
    }
    // What is left is full but for rounding; an empty bin that rounding left over goes to the
    // greatest.
    const auto greatest = static_cast<std::uint32_t>(
        std::max_element(weights.begin(), weights.end()) - weights.begin());
    for (const std::vector<std::uint32_t>* bins : {&small, &large})
        for (const std::uint32_t bin : *bins)
            _columns[bin] = {0, weights[bin] > 0. ? bin : greatest};
}

BinPlace AliasTable::get(std::size_t column, double u) const
{
    const Column& entry = _columns[column];
    const double threshold = entry.threshold;
    const double scaled = u * two32;
    if (scaled < threshold)
        return {column, scaled / threshold};
    return {entry.alias, (scaled - threshold) / (two32 - threshold)};
}

CumulativeTable::CumulativeTable(const std::vector<double>& weights)
    : _sums(weights.size() + 1, 0.)
    , _guide(weights.size() + 1)
    , _guideScale(0.)
    , _lastBin(0)
{
    std::partial_sum(weights.begin(), weights.end(), _sums.begin() + 1);
    if (!(getTotal() > 0.))
        return;
    _guideScale = static_cast<double>(weights.size()) / getTotal();
    _lastBin = weights.size() - 1;
    while (!(_sums[_lastBin + 1] > _sums[_lastBin]))
        --_lastBin;
    std::uint32_t first = 0;
    for (std::size_t i = 0; i < _guide.size(); ++i)
    {
        while (first < _sums.size() && getGuideIndex(_sums[first]) < i)
            ++first;
        _guide[i] = first;
    }
}

/// Never decreases with the sum, whatever the rounding, so that a search may rely on it.
std::size_t CumulativeTable::getGuideIndex(double sum) const
{
    return std::min(static_cast<std::size_t>(sum * _guideScale), _sums.size() - 2);
}

BinPlace CumulativeTable::get(double u) const
{
    const double sum = u * getTotal();
    const std::size_t part = getGuideIndex(sum);
    const auto begin = _sums.begin() + _guide[part];
    const auto end = part + 2 < _sums.size() ? _sums.begin() + _guide[part + 1] : _sums.end();
    const auto above = static_cast<std::size_t>(std::upper_bound(begin, end, sum) - _sums.begin());
    const std::size_t bin = std::min(above - 1, _lastBin); // the first sum is 0: one is not above
    const double weight = _sums[bin + 1] - _sums[bin];
    return {bin, std::min((sum - _sums[bin]) / weight, 1.)};
}

} // namespace Kr
