#include <base/profCounters.h>

#include <base/assert.h>
#include <base/hwCounter.h>

#include <algorithm>

namespace Kr
{

namespace
{

void take(ProfCounters::Statistics& statistics, double value)
{
    const bool isFirst = statistics.samples++ == 0;
    statistics.average += (value - statistics.average) / static_cast<double>(statistics.samples);
    statistics.minimum = isFirst ? value : std::min(statistics.minimum, value);
    statistics.maximum = isFirst ? value : std::max(statistics.maximum, value);
}

} // namespace

ProfCounters::ProfCounters(double interval)
    : _interval(interval)
{
}

ProfCounters::~ProfCounters() = default;

const PrCounter& ProfCounters::add(const PrPath& path)
{
    return addRow(_query.add(path));
}

const PrCounter& ProfCounters::addExpected(const PrPath& path)
{
    return addRow(_query.addExpected(path));
}

const PrCounter& ProfCounters::addRow(const PrCounter& counter)
{
    _rows.push_back({&counter, {}});
    return counter;
}

bool ProfCounters::isDue() const
{
    return _lastStamp == 0 || _interval <= 0. ||
           HwCounter::seconds(_lastStamp, HwCounter::timeStamp()) >= _interval;
}

void ProfCounters::sample()
{
    if (!isDue())
        return;
    _query.collect();
    _lastStamp = HwCounter::timeStamp();
    for (Row& row : _rows)
        if (row.counter->isAvailable())
            take(row.statistics, row.counter->getValue());
}

void ProfCounters::reset() noexcept
{
    for (Row& row : _rows)
        row.statistics = {};
}

ProfCounters::Statistics ProfCounters::getStatistics(const PrCounter& counter) const
{
    const auto row = std::find_if(_rows.begin(), _rows.end(),
                                  [&](const Row& each) { return each.counter == &counter; });
    KR_ASSERT(row != _rows.end());
    return row->statistics;
}

} // namespace Kr
