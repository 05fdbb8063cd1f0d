#include <base/lgCounters.h>

#include <atomic>

namespace Kr
{

namespace
{

constexpr int mostAdded = 8;

std::atomic<LgCounters::Source> programSource{nullptr};
std::atomic<LgCounters::Source> addedSources[mostAdded]{};

/// Puts `to` where `from` is.
bool replaceSource(LgCounters::Source from, LgCounters::Source to) noexcept
{
    for (std::atomic<LgCounters::Source>& place : addedSources)
    {
        LgCounters::Source expected = from;
        if (place.compare_exchange_strong(expected, to))
            return true;
    }
    return false;
}

} // namespace

void LgCounters::setSource(Source source) noexcept
{
    programSource.store(source);
}

LgCounters::Source LgCounters::getSource() noexcept
{
    return programSource.load();
}

bool LgCounters::addSource(Source source) noexcept
{
    return replaceSource(nullptr, source);
}

void LgCounters::removeSource(Source source) noexcept
{
    replaceSource(source, nullptr);
}

void LgCounters::ask(Add add, void* timeline)
{
    if (const Source source = getSource())
        source(add, timeline);
    for (const std::atomic<Source>& place : addedSources)
        if (const Source source = place.load())
            source(add, timeline);
}

} // namespace Kr
