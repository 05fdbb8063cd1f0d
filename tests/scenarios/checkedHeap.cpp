// A program whose heap is checked.

#include "scenario.h"

#include <base/hmCheckedNew.h>
#include <base/hmGC.h>
#include <base/hmGCEx.h>
#include <base/hmHeapMgr.h>
#include <base/inInit.imp>
#include <base/inInitGuard.h>
#include <base/krInitPackages.h>
#include <base/lgLog.h>

#include <fstream>
#include <sstream>
#include <string>
#include <thread>

namespace
{

/// Hidden from the optimiser, which may leave out what nobody looks at.
char* volatile sink = nullptr;

char* allocate(std::size_t size)
{
    sink = new char[size];
    return sink;
}

char* leaked = nullptr;
char* kept = nullptr;

} // namespace

namespace KrInit
{

/// Leaves 100 of its 130 bytes behind.
struct scene
{
    static constexpr const char* name = "scene";
    using Dependencies = Kr::InDependencies<base>;
    static void start()
    {
        leaked = allocate(100);
        kept = allocate(30);
    }
    static void stop() { delete[] kept; }
};

} // namespace KrInit

static Kr::InInit<KrInit::scene> scenePackage;

namespace
{

Kr::HmLedger::Account getAccount(const char* package)
{
    for (const Kr::HmLedger::Account& account : Kr::HmLedger::getAccounts())
        if (account.package == package)
            return account;
    return {};
}

/// The library with the checking heap, going on after faults.
class Library
{
public:
    explicit Library(Kr::HmHeapMgr::SafetyLevel level)
        : _guard(_count, _arguments)
    {
        Kr::HmHeapMgr::getInstance().setContinueOnError(true);
        Kr::HmHeapMgr::getInstance().setSafetyLevel(level);
    }

private:
    int _count = 0;
    const char* const* _arguments = nullptr;
    Kr::InInitGuard _guard;
};

bool lastFaultSays(const char* text)
{
    return Kr::HmLedger::getLastFault().find(text) != std::string::npos;
}

void accounts()
{
    {
        const Library library(Kr::HmHeapMgr::full);
        const Kr::HmLedger::Account up = getAccount("scene");
        SCENARIO_CHECK(up.isUp && up.blocks == 2 && up.bytes == 130 && up.peakBytes == 130);
        std::thread(
            []
            {
                const Kr::HmLedger::Scope scope("scene");
                delete[] allocate(1000);
                const Kr::HmLedger::Scope other("other");
                allocate(5);
            })
            .join();
        delete[] sink;
        const Kr::HmLedger::Account later = getAccount("scene");
        SCENARIO_CHECK(later.bytes == 130 && later.peakBytes == 1130 && later.allocations == 3);
        SCENARIO_CHECK(getAccount("other").blocks == 0 && getAccount("other").allocations == 1);
        std::ostringstream os;
        os << Kr::HmHeapMgr::getInstance();
        SCENARIO_CHECK(os.str().find("\nscene ") != std::string::npos);
    }
    const Kr::HmLedger::Account left = getAccount("scene");
    SCENARIO_CHECK(!left.isUp && left.leftBlocks == 1 && left.leftBytes == 100);
    delete[] leaked;
}

void overrun()
{
    const Library library(Kr::HmHeapMgr::full);
    Kr::HmHeapMgr& heap = Kr::HmHeapMgr::getInstance();
    char* const block = allocate(24);
    SCENARIO_CHECK(heap.isValid(block + 8, 16, Kr::HmHeapMgr::heapPtr));
    SCENARIO_CHECK(!heap.isValid(block + 8, 17, Kr::HmHeapMgr::heapPtr));
    SCENARIO_CHECK(!heap.isValid(&heap, 1000000, Kr::HmHeapMgr::heapPtr));
    heap.checkHeap();
    SCENARIO_CHECK(Kr::HmLedger::getFaultCount() == 0);
    sink[24] = 'x';
    sink[26] = 'x';
    heap.checkHeap();
    SCENARIO_CHECK(Kr::HmLedger::getFaultCount() == 1);
    delete[] block;
    SCENARIO_CHECK(Kr::HmLedger::getFaultCount() == 2);
    SCENARIO_CHECK(lastFaultSays("2 bytes written past the end of a block of 24 bytes, (program)"));

    heap.setSafetyLevel(Kr::HmHeapMgr::some);
    allocate(8);
    sink[8] = 'x';
    delete[] sink;
    SCENARIO_CHECK(Kr::HmLedger::getFaultCount() == 2); // that level only counts
    delete[] leaked;
}

void useAfterRelease()
{
    const Library library(Kr::HmHeapMgr::debug);
    Kr::HmHeapMgr& heap = Kr::HmHeapMgr::getInstance();
    allocate(32);
    delete[] sink;
    heap.checkHeap();
    SCENARIO_CHECK(Kr::HmLedger::getFaultCount() == 0);
    sink[3] = 'x'; // still there, in quarantine
    heap.checkHeap();
    SCENARIO_CHECK(lastFaultSays("1 bytes written after the release of a block of 32 bytes"));
    delete[] sink;
    SCENARIO_CHECK(lastFaultSays("second release of a block of 32 bytes, (program)"));
    const unsigned int faults = Kr::HmLedger::getFaultCount();
    heap.freeDeferred(); // looks once more as it lets the block go
    SCENARIO_CHECK(Kr::HmLedger::getFaultCount() == faults + 1);
    heap.checkHeap();
    SCENARIO_CHECK(Kr::HmLedger::getFaultCount() == faults + 1);
    delete[] leaked;
}

/// With the output of the reports, which a filter can suppress.
std::string reportLeak(void* block, const char* known)
{
    std::ostringstream os;
    Kr::HmGC collector;
    collector.setOutput(&os);
    collector.setStackDump(true);
    collector.setKnownLeaks(known);
    collector.validateAndPrint(block);
    return os.str();
}

void leaks()
{
    const Library library(Kr::HmHeapMgr::full);
    SCENARIO_CHECK(Kr::HmGC::isMemDebugLoaded());
    const std::string report = reportLeak(leaked, nullptr);
    SCENARIO_CHECK(report.find("Leak of 100 bytes, scene\n    ") == 0);
    const std::size_t frame = report.find("    ") + 4;
    const std::string origin = report.substr(frame, report.find('\n', frame) - frame);
    SCENARIO_CHECK(origin.find("checkedHeap") != std::string::npos); // this program
    SCENARIO_CHECK(reportLeak(leaked, ("KNOWNLEAK " + origin + " ENDL").c_str()).empty());
    SCENARIO_CHECK(!reportLeak(leaked, "KNOWNLEAK other+0x1 ENDL").empty());
    SCENARIO_CHECK(reportLeak(sink + 1, nullptr).empty()); // no block begins there

    Kr::HmGC collector;
    collector.setThrowException(true);
    SCENARIO_CHECK_THROWS(collector.validateAndPrint(leaked), Kr::HmGCEx::ExGarbageDetected,
                          "Garbage Collector has detected leaks.");
    delete[] leaked;
}

/// With a timeline that the build names.
void timeline()
{
    std::string path;
    {
        const Library library(Kr::HmHeapMgr::full);
        path = Kr::LgLog::getTimelinePath();
    }
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    SCENARIO_CHECK(text.str().find("{\"ph\":\"C\",") != std::string::npos);
    SCENARIO_CHECK(text.str().find("\"name\":\"heap: scene\",\"args\":{\"value\":1") !=
                   std::string::npos);
    delete[] leaked;
}

constexpr Scenario::Case cases[] = {
    {"accounts", accounts}, {"overrun", overrun},   {"useAfterRelease", useAfterRelease},
    {"leaks", leaks},       {"timeline", timeline},
};

} // namespace

int main(int argc, char** argv)
{
    return Scenario::run(cases, argc, argv);
}
