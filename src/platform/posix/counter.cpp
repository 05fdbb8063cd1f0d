#include <platform/platform.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <mutex>
#include <string>
#include <time.h>

#if defined(__x86_64__) || defined(__i386__)
#include <sys/prctl.h>
#include <x86intrin.h>
#endif

namespace
{

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

std::int64_t toNanoseconds(const timespec& time) noexcept
{
    return static_cast<std::int64_t>(time.tv_sec) * nanosecondsPerSecond + time.tv_nsec;
}

// The processor's counter

#if defined(__x86_64__) || defined(__i386__)

std::uint64_t readProcessorCounter() noexcept
{
    return __rdtsc();
}

/// Whether the counter runs at one rate in every power state ("invariant"), as the processor says.
bool isProcessorCounterInvariant() noexcept
{
    constexpr std::uint32_t powerLeaf = 0x80000007;
    return krIdentifyProcessor(0x80000000).eax >= powerLeaf &&
           (krIdentifyProcessor(powerLeaf).edx & 1U << 8) != 0;
}

/// A process can be forbidden the instruction.
bool isProcessorCounterReadable() noexcept
{
    int mode = 0;
    return ::prctl(PR_GET_TSC, &mode) == 0 && mode == PR_TSC_ENABLE;
}

/// Whether the kernel keeps its own time by the counter. It does so only after it has found the
/// counters of all cores in step, which no program can find out by itself.
bool isProcessorCounterKeptByKernel()
{
    std::ifstream file("/sys/devices/system/clocksource/clocksource0/current_clocksource");
    std::string name;
    return static_cast<bool>(file >> name) && name == "tsc";
}

/// The clock that the counter's rate is measured against.
bool isRawClockReadable() noexcept
{
    timespec now{};
    return ::clock_gettime(CLOCK_MONOTONIC_RAW, &now) == 0;
}

bool isProcessorCounterTrusted()
{
    return isProcessorCounterInvariant() && isProcessorCounterReadable() &&
           isProcessorCounterKeptByKernel() && isRawClockReadable();
}

#else

std::uint64_t readProcessorCounter() noexcept
{
    return 0;
}

bool isProcessorCounterTrusted()
{
    return false;
}

#endif

/// One moment on both clocks.
struct Reading
{
    std::uint64_t ticks;
    std::int64_t nanoseconds;
};

/// Of several readings of the system's clock between two of the counter, takes the tightest, which
/// an interrupt or a cache miss has disturbed least. The clock is the raw one: a correction of the
/// time of day that happens to run during the measurement must not stay in the rate for good.
Reading readBothClocks() noexcept
{
    Reading best{0, 0};
    std::uint64_t narrowest = std::numeric_limits<std::uint64_t>::max();
    for (int attempt = 0; attempt < 32; ++attempt)
    {
        timespec now{};
        const std::uint64_t before = readProcessorCounter();
        ::clock_gettime(CLOCK_MONOTONIC_RAW, &now);
        const std::uint64_t width = readProcessorCounter() - before;
        if (width >= narrowest)
            continue;
        narrowest = width;
        best = {before + width / 2, toNanoseconds(now)};
    }
    return best;
}

/// The processor's ticks per second against the system's clock. The two moments are known to a few
/// nanoseconds, so 2 milliseconds between them give the rate to a few parts per million.
std::uint64_t measureProcessorCounter() noexcept
{
    constexpr std::int64_t leastTime = 2'000'000;
    const Reading first = readBothClocks();
    Reading last = first;
    while (last.nanoseconds - first.nanoseconds < leastTime)
    {
        const timespec pause{0, leastTime};
        ::nanosleep(&pause, nullptr); // a signal may end it early: hence the loop
        last = readBothClocks();
    }
    const double ticks = static_cast<double>(last.ticks - first.ticks);
    const double nanoseconds = static_cast<double>(last.nanoseconds - first.nanoseconds);
    return static_cast<std::uint64_t>(std::llround(ticks * nanosecondsPerSecond / nanoseconds));
}

// The choice between the two

enum class Source
{
    undecided,
    processor,
    system
};

/// Written once, before anything that depends on it; reading it orders nothing else.
std::atomic<Source> chosenSource{Source::undecided};

Source chooseSource() noexcept
{
    const char* wanted = std::getenv("KR_COUNTER_SOURCE");
    Source source = Source::system;
    try
    {
        if ((wanted == nullptr || std::strcmp(wanted, "system") != 0) &&
            isProcessorCounterTrusted())
            source = Source::processor;
    }
    catch (const std::bad_alloc&)
    {
        source = Source::system; // the file could not be read: the system's clock is always right
    }
    // Two threads that come first at once may have decided differently; one decision stands.
    Source decided = Source::undecided;
    return chosenSource.compare_exchange_strong(decided, source) ? source : decided;
}

Source getSource() noexcept
{
    const Source source = chosenSource.load(std::memory_order_relaxed);
    return source != Source::undecided ? source : chooseSource();
}

} // namespace

BOOL QueryPerformanceCounter(LARGE_INTEGER* count) noexcept
{
    if (getSource() == Source::processor)
    {
        count->QuadPart = static_cast<std::int64_t>(readProcessorCounter());
        return 1;
    }
    timespec now{};
    if (::clock_gettime(CLOCK_MONOTONIC, &now) != 0)
        return 0;
    count->QuadPart = toNanoseconds(now);
    return 1;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) noexcept
{
    if (getSource() == Source::processor)
    {
        static const std::uint64_t rate = measureProcessorCounter();
        frequency->QuadPart = static_cast<std::int64_t>(rate);
        return 1;
    }
    frequency->QuadPart = nanosecondsPerSecond;
    return 1;
}

void _ftime64(__timeb64* now) noexcept
{
    timespec time{};
    ::clock_gettime(CLOCK_REALTIME, &time);
    now->time = time.tv_sec;
    now->millitm = static_cast<unsigned short>(time.tv_nsec / 1'000'000);
}
