#include <base/lgLog.h>

#include <base/internal/log/lgLogState.h>
#include <base/internal/log/lgProducer.h>
#include <base/lgGroups.h>
#include <base/lgTimeline.h>
#include <base/osEnv.h>

#include <iostream>

namespace Kr
{

void LgLog::init()
{
    auto session = std::make_unique<LgSession>(LgSettings::read(OsEnv::getVariable, std::cout));
    LgMajorGroup::initializeFromEnvironment();
    LgLogState::start(std::move(session));
}

void LgLog::destroy()
{
    LgLogState::stop();
    LgMajorGroup::finalize();
}

LgQueue* LgLog::getQueue() noexcept
{
    LgProducer* producer = LgLogState::getLastingProducer();
    return producer != nullptr ? producer->getQueue() : nullptr;
}

void LgLog::flush() noexcept
{
    LgLogState::drain(LgDrain::toSystem);
}

void LgLog::flushToDisk() noexcept
{
    LgLogState::drain(LgDrain::toDisk);
}

std::uint64_t LgLog::getLostCount()
{
    return LgLogState::getLostCount();
}

std::string LgLog::getDirectory()
{
    return LgLogState::getSettings().directory;
}

std::string LgLog::getTimelinePath()
{
    return LgLogState::getSettings().timelinePath;
}

LgEndGuard::~LgEndGuard()
{
    LgLogState::drainAtEnd(LgDrain::toSystem);
}

std::atomic<bool> LgTimeline::_enabled{false};
std::atomic<LgTimeline::CounterSource> LgTimeline::_counterSource{nullptr};

void LgTimeline::addSpan(const char* name, unsigned long long start,
                         unsigned long long end) noexcept
{
    LgProducer* producer = LgLogState::getLastingProducer();
    LgSpanRing* ring = producer != nullptr ? producer->getRing() : nullptr;
    if (ring != nullptr)
        ring->add(name, start, end);
}

} // namespace Kr
