#include <base/lgTimeline.h>

#include <base/internal/log/lgProducer.h>

namespace Kr
{

std::atomic<bool> LgTimeline::_enabled{false};

void LgTimeline::addSpan(const char* name, unsigned long long start,
                         unsigned long long end) noexcept
{
    LgProducer* producer = LgProducer::getLasting();
    LgSpanRing* ring = producer != nullptr ? producer->getRing() : nullptr;
    if (ring != nullptr)
        ring->add(name, start, end);
}

} // namespace Kr
