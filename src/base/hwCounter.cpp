#include <base/hwCounter.h>

#include <mutex>

namespace Kr
{

namespace
{

std::mutex creation;

} // namespace

std::atomic<const HwCounterEng*> HwCounter::_engine{nullptr};

const HwCounterEng& HwCounter::createEngine()
{
    const std::lock_guard<std::mutex> lock(creation);
    const HwCounterEng* engine = _engine.load(std::memory_order_relaxed);
    if (engine == nullptr)
    {
        engine = HwCounterEng::create().release();
        _engine.store(engine, std::memory_order_release);
    }
    return *engine;
}

double HwCounter::seconds(unsigned long long start, unsigned long long end)
{
    return init().seconds(start, end);
}

double HwCounter::seconds()
{
    return init().seconds();
}

double HwCounter::resolution()
{
    return init().resolution();
}

int HwCounter::getRateNumerator()
{
    return init().getRateNumerator();
}

int HwCounter::getRateDenominator()
{
    return init().getRateDenominator();
}

void HwCounter::dump(std::ostream& os)
{
    init().dump(os);
}

} // namespace Kr
