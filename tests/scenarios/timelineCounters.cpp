// A program whose timeline shows the system's counters, if it is asked to.

#include "scenario.h"

#include <base/inInitGuard.h>
#include <base/lgLog.h>
#include <base/lgTimeline.h>
#include <base/prCatalog.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

namespace
{

constexpr const char* processorTrack = "\"name\":\"processor (%)\",\"args\":{\"value\":";
constexpr const char* memoryTrack = "\"name\":\"working set (bytes)\",\"args\":{\"value\":";

std::string getTimeline(const std::string& path)
{
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

/// The library, started without arguments.
struct Library
{
    int count = 0;
    const char* const* arguments = nullptr;
    const Kr::InInitGuard guard{count, arguments};
};

bool holds(const std::string& text, const char* part)
{
    return text.find(part) != std::string::npos;
}

bool countsProcesses()
{
    const auto objects = Kr::PrCatalog::getObjects();
    return std::find(objects.begin(), objects.end(), "Process") != objects.end();
}

/// Nobody logs: the samples are taken nevertheless.
void sampled()
{
    const Library library;
    const std::string path = Kr::LgLog::getTimelinePath();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!holds(getTimeline(path), processorTrack) && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    SCENARIO_CHECK(holds(getTimeline(path), processorTrack));
    SCENARIO_CHECK(holds(getTimeline(path), memoryTrack) == countsProcesses());
}

void off()
{
    std::string path;
    {
        const Library library;
        path = Kr::LgLog::getTimelinePath();
        const Kr::LgSpan span("work");
    }
    SCENARIO_CHECK(holds(getTimeline(path), "\"work\""));
    SCENARIO_CHECK(!holds(getTimeline(path), "\"ph\":\"C\""));
}

constexpr Scenario::Case cases[] = {{"sampled", sampled}, {"off", off}};

} // namespace

int main(int argc, char** argv)
{
    return Scenario::run(cases, argc, argv);
}
