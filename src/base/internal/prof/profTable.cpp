#include <base/internal/prof/profTable.h>

#include <base/internal/counters/prValueText.h>
#include <base/profCounters.h>

#include <iomanip>

namespace Kr
{

ProfTable::ProfTable(std::ostream& os)
    : _os(os)
    , _flags(os.flags())
    , _width(os.width(0)) // the caller's width would pad the first text
    , _fill(os.fill(' '))
{
    _os << std::left << std::fixed;
}

ProfTable::~ProfTable()
{
    _os.flags(_flags);
    _os.width(_width);
    _os.fill(_fill);
}

std::string ProfTable::describe(const ProfCounters& counters, const PrCounter& counter)
{
    std::string text = counter.getPath().toString() + ':';
    if (counters.getStatistics(counter).samples == 0)
        text += ' ' + counter.getProblem();
    return text;
}

void ProfTable::writeCounters(const ProfCounters* counters)
{
    if (counters == nullptr)
        return;
    for (const PrCounter* const counter : counters->getCounters())
    {
        _os << describe(*counters, *counter) << std::endl;
        const auto statistics = counters->getStatistics(*counter);
        if (statistics.samples == 0)
            continue;
        writeLine("Nb of samples:", statistics.samples);
        writeLine("Average value:", formatCounterValue(statistics.average));
        writeLine("Minimum value:", formatCounterValue(statistics.minimum));
        writeLine("Maximum value:", formatCounterValue(statistics.maximum));
    }
}

void ProfTable::writeLabel(const char* label)
{
    _os << std::setw(16) << label << std::setw(8) << "";
}

} // namespace Kr
