#include <base/hmLedger.h>

#include <base/internal/heap/hmCheckingHeap.h>
#include <base/internal/init/inPackageWatch.h>

#include <algorithm>
#include <iomanip>
#include <new>
#include <ostream>

namespace Kr
{

namespace
{

/// The owners that the packages which start or stop within each other have displaced.
thread_local std::uint32_t displaced[32];
thread_local std::size_t displacedCount = 0;

void watchPackage(const char* package, bool isStart, bool isBegin) noexcept
{
    constexpr std::size_t limit = sizeof displaced / sizeof *displaced;
    const std::uint32_t owner = HmCheckingHeap::findOwner(package);
    if (isBegin)
    {
        const std::uint32_t previous = HmCheckingHeap::setCurrentOwner(owner);
        if (displacedCount < limit)
            displaced[displacedCount] = previous;
        ++displacedCount;
        if (isStart)
            HmCheckingHeap::setUp(owner, true);
        return;
    }
    --displacedCount;
    HmCheckingHeap::setCurrentOwner(displacedCount < limit ? displaced[displacedCount]
                                                           : HmCheckingHeap::program);
    if (!isStart)
        HmCheckingHeap::setUp(owner, false);
}

} // namespace

HmLedger::Scope::Scope(const char* package)
    : _previous(HmCheckingHeap::program)
{
    if (isActive())
        _previous = HmCheckingHeap::setCurrentOwner(HmCheckingHeap::findOwner(package));
}

HmLedger::Scope::~Scope()
{
    if (isActive())
        HmCheckingHeap::setCurrentOwner(_previous);
}

bool HmLedger::isActive() noexcept
{
    return HmCheckingHeap::isActive();
}

Vector<HmLedger::Account> HmLedger::getAccounts()
{
    Vector<Account> accounts;
    if (!isActive())
        return accounts;
    for (const HmCheckingHeap::Account& account : HmCheckingHeap::getAccounts())
        accounts.push_back({account.name, account.blocks, account.bytes, account.peakBytes,
                            account.allocations, account.leftBlocks, account.leftBytes,
                            account.isUp});
    return accounts;
}

void HmLedger::print(std::ostream& os)
{
    os << std::left << std::setw(24) << "package" << std::right << std::setw(10) << "blocks"
       << std::setw(12) << "bytes" << std::setw(12) << "peak" << std::setw(12) << "allocations"
       << std::setw(12) << "left behind" << '\n';
    for (const Account& account : getAccounts())
        os << std::left << std::setw(24) << account.package << std::right << std::setw(10)
           << account.blocks << std::setw(12) << account.bytes << std::setw(12) << account.peakBytes
           << std::setw(12) << account.allocations << std::setw(12) << account.leftBytes << '\n';
}

unsigned int HmLedger::getFaultCount() noexcept
{
    return isActive() ? HmCheckingHeap::getFaultCount() : 0;
}

std::string HmLedger::getLastFault()
{
    char text[512] = "";
    if (isActive())
        HmCheckingHeap::getLastFault(text, sizeof text);
    return text;
}

bool HmLedger::activate() noexcept
{
    HmCheckingHeap::activate();
    InPackageWatch::setWatcher(&watchPackage);
    return true;
}

void* HmLedger::allocate(std::size_t size, const void* origin)
{
    for (;;)
    {
        if (void* const block = HmCheckingHeap::allocate(size, origin))
            return block;
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr)
            throw std::bad_alloc();
        handler();
    }
}

void* HmLedger::tryAllocate(std::size_t size, const void* origin) noexcept
{
    try
    {
        return allocate(size, origin);
    }
    catch (const std::bad_alloc&)
    {
        return nullptr;
    }
}

void HmLedger::release(void* block) noexcept
{
    if (block != nullptr)
        HmCheckingHeap::release(block);
}

} // namespace Kr
