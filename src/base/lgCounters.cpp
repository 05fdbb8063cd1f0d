#include <base/lgCounters.h>

#include <atomic>

namespace Kr
{

namespace
{

std::atomic<LgCounters::Source> currentSource{nullptr};

} // namespace

void LgCounters::setSource(Source source) noexcept
{
    currentSource.store(source);
}

LgCounters::Source LgCounters::getSource() noexcept
{
    return currentSource.load();
}

} // namespace Kr
