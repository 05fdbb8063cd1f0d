#include <base/internal/heap/hmCheckingHeapMgr.h>

#include <base/hmGC.h>
#include <base/hmLedger.h>
#include <base/internal/heap/hmCheckingHeap.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>

namespace Kr
{

namespace
{

/// The text of the file that KR_HEAP_KNOWN_LEAKS names.
std::string readKnownLeaks()
{
    const char* const path = std::getenv("KR_HEAP_KNOWN_LEAKS");
    if (path == nullptr)
        return {};
    std::ifstream file(path);
    if (!file)
        std::cout << "KR_HEAP_KNOWN_LEAKS: cannot read '" << path << "'" << std::endl;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

template <class Predicate>
void reportBlocks(const HmCheckingHeap::Blocks& blocks, const std::string& knownLeaks,
                  Predicate isWanted)
{
    HmGC collector;
    collector.setOutput(&std::cerr);
    collector.setStackDump(true);
    collector.setKnownLeaks(knownLeaks.c_str());
    for (const HmCheckingHeap::Block& block : blocks)
        if (isWanted(block))
            collector.validateAndPrint(block.address);
}

} // namespace

HmHeapMgr* HmHeapMgr::create()
{
    if (HmCheckingHeap::isActive())
        return new HmCheckingHeapMgr;
    return new HmHeapMgr;
}

HmCheckingHeapMgr::HmCheckingHeapMgr()
    : _knownLeaks(readKnownLeaks())
{
    applySettings();
}

HmCheckingHeapMgr::~HmCheckingHeapMgr()
{
    if (getDumpHeapInfo())
        HmCheckingHeapMgr::dump(std::cerr);
    if (!getDumpLeaks())
        return;
    const HmCheckingHeap::Accounts accounts = HmCheckingHeap::getAccounts();
    reportBlocks(HmCheckingHeap::getBlocks(0, HmCheckingHeap::getLastNumber()), _knownLeaks,
                 [&accounts](const HmCheckingHeap::Block& block)
                 { return accounts[block.owner].hasStopped; });
}

void HmCheckingHeapMgr::applySettings() const
{
    HmCheckingHeap::Settings settings;
    settings.hasGuards = getSafetyLevel() >= full;
    settings.hasQuarantine = getSafetyLevel() >= debug || getDoDeferFreeing();
    settings.quarantineLength = getDeferQueueLen();
    settings.quarantineThreshold = getDeferSizeThreshold();
    settings.checkEvery = getCheckAllMemory() ? getCheckFrequency() : 0;
    settings.abortsAtFault = !getContinueOnError();
    HmCheckingHeap::setSettings(settings);
}

bool HmCheckingHeapMgr::isValid(void* ptr, unsigned long size, PtrType)
{
    HmCheckingHeap::Block block;
    if (!HmCheckingHeap::findAround(ptr, block))
        return false;
    const auto offset =
        static_cast<std::size_t>(static_cast<char*>(ptr) - static_cast<char*>(block.address));
    return size <= block.size - offset;
}

void HmCheckingHeapMgr::checkHeap() const
{
    HmCheckingHeap::check();
}

unsigned int HmCheckingHeapMgr::setCheckPoint(unsigned int number)
{
    std::uint64_t& newest = _checkPoints[number];
    newest = HmCheckingHeap::getLastNumber(); // after the point's own allocation
    return static_cast<unsigned int>(HmCheckingHeap::getBlocks(0, newest).size());
}

/// A check point that was never set stands for the beginning, or for now.
void HmCheckingHeapMgr::reportLeakage(unsigned int from, unsigned int to) const
{
    const auto first = _checkPoints.find(from);
    const auto last = _checkPoints.find(to);
    const std::uint64_t begin = first != _checkPoints.end() ? first->second + 1 : 0;
    const std::uint64_t end =
        last != _checkPoints.end() ? last->second : HmCheckingHeap::getLastNumber();
    reportBlocks(HmCheckingHeap::getBlocks(begin, end), _knownLeaks,
                 [](const HmCheckingHeap::Block&) { return true; });
}

void HmCheckingHeapMgr::dump(std::ostream& os) const
{
    HmHeapMgr::dump(os);
    HmLedger::print(os);
}

void HmCheckingHeapMgr::dumpPtrInfo(void* ptr, std::ostream& os) const
{
    HmCheckingHeap::Block block;
    if (!HmCheckingHeap::findAround(ptr, block))
    {
        os << "Not a block of this heap" << std::endl;
        return;
    }
    os << "Block " << block.number << " of " << block.size << " bytes, "
       << HmCheckingHeap::getOwnerName(block.owner) << ", allocated from " << block.frames[0]
       << std::endl;
}

void HmCheckingHeapMgr::dumpMallocStats(std::ostream& os) const
{
    std::size_t blocks = 0;
    std::size_t bytes = 0;
    std::uint64_t allocations = 0;
    for (const HmCheckingHeap::Account& account : HmCheckingHeap::getAccounts())
    {
        blocks += account.blocks;
        bytes += account.bytes;
        allocations += account.allocations;
    }
    os << blocks << " blocks, " << bytes << " bytes, " << allocations << " allocations so far"
       << std::endl;
}

void HmCheckingHeapMgr::freeDeferred() const
{
    HmCheckingHeap::freeQuarantine();
}

// Each setting takes effect at once.

template <class T>
T HmCheckingHeapMgr::applied(T previous) const
{
    applySettings();
    return previous;
}

HmHeapMgr::SafetyLevel HmCheckingHeapMgr::setSafetyLevel(SafetyLevel level)
{
    return applied(HmHeapMgr::setSafetyLevel(level));
}

bool HmCheckingHeapMgr::setContinueOnError(bool on)
{
    return applied(HmHeapMgr::setContinueOnError(on));
}

bool HmCheckingHeapMgr::setCheckAllMemory(bool on)
{
    return applied(HmHeapMgr::setCheckAllMemory(on));
}

bool HmCheckingHeapMgr::setDoDeferFreeing(bool on)
{
    return applied(HmHeapMgr::setDoDeferFreeing(on));
}

unsigned long HmCheckingHeapMgr::setDeferQueueLen(unsigned long blocks)
{
    return applied(HmHeapMgr::setDeferQueueLen(blocks));
}

unsigned long HmCheckingHeapMgr::setDeferSizeThreshold(unsigned long bytes)
{
    return applied(HmHeapMgr::setDeferSizeThreshold(bytes));
}

unsigned int HmCheckingHeapMgr::setCheckFrequency(unsigned int allocations)
{
    return applied(HmHeapMgr::setCheckFrequency(allocations));
}

} // namespace Kr
