#include <platform/posix/wakeLead.h>

#include <algorithm>
#include <thread>

namespace
{

std::atomic<unsigned int> awakeCount{0};

bool leavesAProcessor(unsigned int othersAwake) noexcept
{
    static const unsigned int processorCount = std::thread::hardware_concurrency(); // or 0: unknown
    return othersAwake + 1 < processorCount;
}

} // namespace

void KrWakeLead::learn(KrMoment delay) noexcept
{
    const KrMoment lead = get();
    const KrMoment lacking = std::min(delay, greatest) - lead;
    _lead.store(lead + (lacking > 0 ? lacking / 4 : lacking / 32), std::memory_order_relaxed);
}

KrWakeLead& krWakeLead() noexcept
{
    static KrWakeLead lead;
    return lead;
}

KrAwake::KrAwake() noexcept
    : _isAllowed(leavesAProcessor(awakeCount.fetch_add(1, std::memory_order_relaxed)))
{
}

KrAwake::~KrAwake()
{
    awakeCount.fetch_sub(1, std::memory_order_relaxed);
}
