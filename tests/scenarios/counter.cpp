// What needs a process of its own: the counter's first use, and what start-up finds out about the
// machine.

#include "scenario.h"

#include <base/hwCounter.h>
#include <base/inInitGuard.h>
#include <base/osCpuInfo.h>

#include <atomic>
#include <thread>
#include <vector>

namespace
{

/// Nothing has started the library; several threads want the counter at once.
void firstUse()
{
    std::atomic<int> waiting{4};
    std::atomic<int> backwards{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(
            [&]
            {
                --waiting;
                while (waiting != 0)
                    std::this_thread::yield();
                const unsigned long long first = Kr::HwCounter::timeStamp();
                if (Kr::HwCounter::timeStamp() < first)
                    ++backwards;
            });
    for (std::thread& thread : threads)
        thread.join();
    SCENARIO_CHECK(backwards == 0);
    SCENARIO_CHECK(Kr::HwCounter::getRateNumerator() > 0);
    SCENARIO_CHECK(Kr::OsCpuInfo::getHwCounterFrequency() != 0);
}

/// The package of the operating-system layer describes the machine.
void startUp()
{
    SCENARIO_CHECK(!Kr::OsCpuInfo::hasSSE());
    SCENARIO_CHECK(std::strcmp(Kr::OsCpuInfo::getTypeName(), "UNKNOWN") == 0);
    int argc = 0;
    const char* const* argv = nullptr;
    const Kr::InInitGuard guard(argc, argv);
    SCENARIO_CHECK(Kr::OsCpuInfo::hasMMX() && Kr::OsCpuInfo::hasSSE());
    Kr::OsCpuInfo::Type type = Kr::OsCpuInfo::UNKNOWN;
    Kr::OsCpuInfo::getDetailedType(&type, nullptr, nullptr, nullptr);
    SCENARIO_CHECK(type == Kr::OsCpuInfo::IA32);
    SCENARIO_CHECK(std::strcmp(Kr::OsCpuInfo::getTypeName(), "IA32") == 0);
    SCENARIO_CHECK(Kr::OsCpuInfo::getHwCounterFrequency() != 0);
}

} // namespace

int main(int argc, char** argv)
{
    const Scenario::Case cases[] = {{"firstUse", firstUse}, {"startUp", startUp}};
    return Scenario::run(cases, argc, argv);
}
