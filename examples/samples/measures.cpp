#include "measures.h"

#include <algorithm>
#include <cmath>

namespace
{

/// Counts and sums over ranks, each change and query in logarithmic time (P. M. Fenwick, 1994).
class Fenwick
{
public:
    explicit Fenwick(std::size_t size)
        : _count(size + 1)
        , _sum(size + 1)
    {
    }
    void add(std::size_t rank, double value)
    {
        for (std::size_t i = rank + 1; i < _count.size(); i += i & (0 - i))
        {
            _count[i] += 1;
            _sum[i] += value;
        }
    }
    /// Of the ranks below this one.
    std::pair<double, double> getBelow(std::size_t rank) const
    {
        std::pair<double, double> result(0, 0);
        for (std::size_t i = rank; i != 0; i -= i & (0 - i))
        {
            result.first += _count[i];
            result.second += _sum[i];
        }
        return result;
    }

private:
    std::vector<double> _count;
    std::vector<double> _sum;
};

} // namespace

// T. T. Warnock, Computational Investigations of Low-Discrepancy Point Sets, 1972. The sum over all
// pairs of (1 - max(x, x')) (1 - max(y, y')) is taken in the order of x, so that the greater x is
// known, and by a tree over the ranks of y.
double getDiscrepancy(const std::vector<Exhibit::Point>& points, unsigned int dimension)
{
    std::vector<std::pair<double, double>> sorted;
    for (const Exhibit::Point& p : points)
        sorted.emplace_back(p[0], dimension == 2 ? p[1] : 0);
    std::sort(sorted.begin(), sorted.end());
    std::vector<double> ys;
    for (const auto& p : sorted)
        ys.push_back(p.second);
    std::sort(ys.begin(), ys.end());

    Fenwick tree(ys.size());
    double single = 0, pairs = 0, all = 0; // all: the sum of 1 - y so far
    for (const auto& [x, y] : sorted)
    {
        const auto rank =
            static_cast<std::size_t>(std::lower_bound(ys.begin(), ys.end(), y) - ys.begin());
        const auto [count, sum] = tree.getBelow(rank);
        pairs += (1 - x) * (2 * (count * (1 - y) + (all - sum)) + (1 - y));
        single += (1 - x * x) * (dimension == 2 ? 1 - y * y : 1);
        tree.add(rank, 1 - y);
        all += 1 - y;
    }
    const double n = static_cast<double>(points.size());
    const double square = std::pow(3., -static_cast<double>(dimension)) -
                          std::pow(2., 1 - static_cast<double>(dimension)) / n * single +
                          pairs / (n * n);
    return std::sqrt(std::max(0., square));
}

double getIntegralError(const Exhibit& exhibit, const std::vector<Exhibit::Point>& points)
{
    double sum = 0;
    for (const Exhibit::Point& p : points)
        sum += exhibit.integrand(p);
    return std::fabs(sum / static_cast<double>(points.size()) - 1);
}
