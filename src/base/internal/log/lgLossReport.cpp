#include <base/internal/log/lgLossReport.h>

#include <base/hwCounter.h>
#include <base/internal/log/lgCountsText.h>
#include <base/internal/log/lgLosses.h>

#include <cstdio>
#include <numeric>

namespace Kr
{

namespace
{

std::uint64_t currentSecond()
{
    return HwCounter::timeStamp() / static_cast<std::uint64_t>(HwCounter::getRateNumerator());
}

unsigned long sumOf(const LgCountsText::Counts& counts)
{
    return std::accumulate(counts.begin(), counts.end(), 0UL);
}

} // namespace

LgLossReport::LgLossReport(LgReader& reader)
    : _reader(reader)
    , _lastSecond(currentSecond())
{
}

void LgLossReport::tell(bool now) noexcept
{
    tellUntold();
    const std::uint64_t second = currentSecond();
    if (second == _lastSecond && !now)
        return;
    _lastSecond = second;
    for (LgLimit* limit = LgLimit::getFirst(); limit != nullptr; limit = limit->getNext())
        tellWithheld(*limit);
}

void LgLossReport::tellUntold() noexcept
{
    const LgCountsText::Counts counts = LgLosses::takeUntold();
    const unsigned long sum = sumOf(counts);
    if (sum == 0)
        return;
    char intro[100];
    std::snprintf(intro, sizeof intro, "%lu messages were lost for want of memory", sum);
    char text[LgCountsText::size];
    _reader.add({LgTypes::Warning, 0, 0, "Logger", LgCountsText::write(text, intro, counts),
                 static_cast<int>(sum)});
}

void LgLossReport::tellWithheld(LgLimit& limit) noexcept
{
    const LgCountsText::Counts counts = limit.takeWithheld();
    const unsigned long sum = sumOf(counts);
    if (sum == 0)
        return;
    char intro[100];
    std::snprintf(intro, sizeof intro,
                  "%lu messages were withheld, above the limit of %lu a second", sum,
                  static_cast<unsigned long>(limit.getRate()));
    char text[LgCountsText::size];
    _reader.add({LgTypes::Informational, 0, 0, limit.getGroup(),
                 LgCountsText::write(text, intro, counts), static_cast<int>(sum)});
}

} // namespace Kr
