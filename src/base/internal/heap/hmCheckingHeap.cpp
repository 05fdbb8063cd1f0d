#include <base/internal/heap/hmCheckingHeap.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <deque>
#include <mutex>
#include <unordered_map>

#include <unwind.h>

namespace Kr
{

namespace
{

using Block = HmCheckingHeap::Block;
using Account = HmCheckingHeap::Account;

constexpr std::size_t guardSize = 16;
constexpr unsigned char guardByte = 0xFD;
constexpr unsigned char releasedByte = 0xDD;

template <class Key, class Value>
using Map = std::unordered_map<Key, Value, std::hash<Key>, std::equal_to<Key>,
                               HmMallocAllocator<std::pair<const Key, Value>>>;

/// All that the heap knows. Never destroyed: blocks are released until the process is gone.
struct State
{
    State() { accounts.push_back({"(program)", 0, 0, 0, 0, 0, 0, true, false}); }

    std::mutex mutex; // guards all that follows
    HmCheckingHeap::Settings settings;
    Map<void*, Block> blocks;
    std::deque<Block, HmMallocAllocator<Block>> quarantine;
    std::deque<Account, HmMallocAllocator<Account>> accounts; // the names keep their places
    std::uint64_t lastNumber = 0;
    unsigned int faults = 0;
    char lastFault[512] = "";
};

State& getState()
{
    alignas(State) static unsigned char storage[sizeof(State)];
    static State& state = *new (storage) State;
    return state;
}

std::atomic<bool> active{false};
thread_local std::uint32_t currentOwner = HmCheckingHeap::program;

using Lock = std::unique_lock<std::mutex>;

// Call stacks

struct Walk
{
    const void* origin;
    void** frames;
    std::size_t count;
    bool isPastOrigin;
};

_Unwind_Reason_Code visitFrame(_Unwind_Context* context, void* argument)
{
    auto& walk = *static_cast<Walk*>(argument);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the unwinder speaks of addresses as integers
    void* const address = reinterpret_cast<void*>(_Unwind_GetIP(context));
    walk.isPastOrigin = walk.isPastOrigin || address == walk.origin;
    if (walk.isPastOrigin && address != nullptr)
        walk.frames[walk.count++] = address;
    return walk.count < HmCheckingHeap::depth ? _URC_NO_REASON : _URC_END_OF_STACK;
}

/// Without a lock: walking the stack asks the loader, which may itself be allocating.
void captureStack(Block& block, const void* origin) noexcept
{
    std::fill(std::begin(block.frames), std::end(block.frames), nullptr);
    Walk walk{origin, block.frames, 0, false};
    _Unwind_Backtrace(&visitFrame, &walk);
    if (walk.count == 0)
        block.frames[0] = const_cast<void*>(origin);
}

// Faults

/// Notes a fault. Under the lock.
void note(State& state, const char* what, const Block& block) noexcept
{
    ++state.faults;
    std::snprintf(state.lastFault, sizeof state.lastFault,
                  "Heap fault: %s a block of %zu bytes, %s, allocated from %p", what, block.size,
                  state.accounts[block.owner].name, block.frames[0]);
    std::fprintf(stderr, "%s\n", state.lastFault);
    if (state.settings.abortsAtFault)
        std::abort();
}

void noteWritten(State& state, std::size_t bytes, const char* where, const Block& block) noexcept
{
    char what[64];
    std::snprintf(what, sizeof what, "%zu bytes written %s", bytes, where);
    note(state, what, block);
}

std::size_t countOther(const void* memory, std::size_t size, unsigned char value) noexcept
{
    const auto* const bytes = static_cast<const unsigned char*>(memory);
    return size - static_cast<std::size_t>(std::count(bytes, bytes + size, value));
}

void checkGuard(State& state, const Block& block) noexcept
{
    const auto* const end = static_cast<unsigned char*>(block.address) + block.size;
    if (const std::size_t bytes = countOther(end, block.guard, guardByte))
        noteWritten(state, bytes, "past the end of", block);
}

void checkReleased(State& state, const Block& block) noexcept
{
    if (const std::size_t bytes = countOther(block.address, block.size, releasedByte))
        noteWritten(state, bytes, "after the release of", block);
}

// Blocks

void enter(Account& account, std::size_t size) noexcept
{
    ++account.blocks;
    ++account.allocations;
    account.bytes += size;
    account.peakBytes = std::max(account.peakBytes, account.bytes);
}

void leave(Account& account, std::size_t size) noexcept
{
    --account.blocks;
    account.bytes -= size;
}

/// Code that does not know of the checks has released the block that was at this address.
void forgetStale(State& state, void* address) noexcept
{
    const auto stale = state.blocks.find(address);
    if (stale == state.blocks.end())
        return;
    leave(state.accounts[stale->second.owner], stale->second.size);
    state.blocks.erase(stale);
}

void checkAll(State& state) noexcept
{
    for (const auto& entry : state.blocks)
        checkGuard(state, entry.second);
    for (const Block& block : state.quarantine)
        checkReleased(state, block);
}

void shortenQuarantine(State& state, std::size_t length) noexcept
{
    while (state.quarantine.size() > length)
    {
        checkReleased(state, state.quarantine.front());
        std::free(state.quarantine.front().address);
        state.quarantine.pop_front();
    }
}

/// Whether the block is kept. If not, its memory is free to go.
bool putInQuarantine(State& state, const Block& block) noexcept
{
    if (!state.settings.hasQuarantine || block.size > state.settings.quarantineThreshold)
        return false;
    try
    {
        state.quarantine.push_back(block);
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
    std::memset(block.address, releasedByte, block.size);
    shortenQuarantine(state, state.settings.quarantineLength);
    return true;
}

const Block* findInQuarantine(const State& state, const void* address) noexcept
{
    for (const Block& block : state.quarantine)
        if (block.address == address)
            return &block;
    return nullptr;
}

bool record(State& state, Block& block) noexcept
{
    const Lock lock(state.mutex);
    try
    {
        forgetStale(state, block.address);
        block.number = state.lastNumber + 1;
        state.blocks.emplace(block.address, block);
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
    ++state.lastNumber;
    enter(state.accounts[block.owner], block.size);
    if (state.settings.checkEvery != 0 && state.lastNumber % state.settings.checkEvery == 0)
        checkAll(state);
    return true;
}

} // namespace

bool HmCheckingHeap::isActive() noexcept
{
    return active.load(std::memory_order_relaxed);
}

void HmCheckingHeap::activate() noexcept
{
    active.store(true, std::memory_order_relaxed);
}

void HmCheckingHeap::setSettings(const Settings& settings) noexcept
{
    State& state = getState();
    const Lock lock(state.mutex);
    state.settings = settings;
    shortenQuarantine(state, settings.hasQuarantine ? settings.quarantineLength : 0);
}

void* HmCheckingHeap::allocate(std::size_t size, const void* origin) noexcept
{
    State& state = getState();
    Block block{};
    block.size = size;
    block.guard = guardSize;
    block.owner = currentOwner;
    if (size > SIZE_MAX - guardSize)
        return nullptr;
    block.address = std::malloc(size + guardSize);
    if (block.address == nullptr)
        return nullptr;
    captureStack(block, origin);
    std::memset(static_cast<unsigned char*>(block.address) + size, guardByte, guardSize);
    if (record(state, block))
        return block.address;
    std::free(block.address);
    return nullptr;
}

void HmCheckingHeap::release(void* address) noexcept
{
    State& state = getState();
    {
        const Lock lock(state.mutex);
        const auto found = state.blocks.find(address);
        if (found != state.blocks.end())
        {
            const Block block = found->second;
            state.blocks.erase(found);
            leave(state.accounts[block.owner], block.size);
            if (state.settings.hasGuards)
                checkGuard(state, block);
            if (putInQuarantine(state, block))
                return;
        }
        else if (const Block* const kept = findInQuarantine(state, address))
        {
            note(state, "second release of", *kept);
            return;
        }
    }
    std::free(address); // also what the checks have never seen
}

bool HmCheckingHeap::find(const void* address, Block& block) noexcept
{
    State& state = getState();
    const Lock lock(state.mutex);
    const auto found = state.blocks.find(const_cast<void*>(address));
    if (found == state.blocks.end())
        return false;
    block = found->second;
    return true;
}

bool HmCheckingHeap::findAround(const void* address, Block& block) noexcept
{
    State& state = getState();
    const Lock lock(state.mutex);
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    for (const auto& entry : state.blocks)
    {
        const auto begin = reinterpret_cast<std::uintptr_t>(entry.first);
        if (begin > place || place - begin >= std::max<std::size_t>(entry.second.size, 1))
            continue;
        block = entry.second;
        return true;
    }
    return false;
}

HmCheckingHeap::Blocks HmCheckingHeap::getBlocks(std::uint64_t first, std::uint64_t last)
{
    Blocks blocks;
    State& state = getState();
    {
        const Lock lock(state.mutex);
        for (const auto& entry : state.blocks)
            if (entry.second.number >= first && entry.second.number <= last)
                blocks.push_back(entry.second);
    }
    std::sort(blocks.begin(), blocks.end(),
              [](const Block& left, const Block& right) { return left.number < right.number; });
    return blocks;
}

std::uint64_t HmCheckingHeap::getLastNumber() noexcept
{
    State& state = getState();
    const Lock lock(state.mutex);
    return state.lastNumber;
}

void HmCheckingHeap::check() noexcept
{
    State& state = getState();
    const Lock lock(state.mutex);
    checkAll(state);
}

void HmCheckingHeap::freeQuarantine() noexcept
{
    State& state = getState();
    const Lock lock(state.mutex);
    shortenQuarantine(state, 0);
}

// Accounts

std::uint32_t HmCheckingHeap::findOwner(const char* name) noexcept
{
    State& state = getState();
    const Lock lock(state.mutex);
    for (std::size_t i = 0; i < state.accounts.size(); ++i)
        if (std::strncmp(state.accounts[i].name, name, nameSize - 1) == 0)
            return static_cast<std::uint32_t>(i);
    Account account{};
    std::snprintf(account.name, sizeof account.name, "%s", name);
    try
    {
        state.accounts.push_back(account);
    }
    catch (const std::bad_alloc&)
    {
        return program;
    }
    return static_cast<std::uint32_t>(state.accounts.size() - 1);
}

const char* HmCheckingHeap::getOwnerName(std::uint32_t owner) noexcept
{
    State& state = getState();
    const Lock lock(state.mutex);
    return state.accounts[owner].name;
}

std::uint32_t HmCheckingHeap::setCurrentOwner(std::uint32_t owner) noexcept
{
    const std::uint32_t previous = currentOwner;
    currentOwner = owner;
    return previous;
}

void HmCheckingHeap::setUp(std::uint32_t owner, bool isUp) noexcept
{
    State& state = getState();
    const Lock lock(state.mutex);
    Account& account = state.accounts[owner];
    account.isUp = isUp;
    account.hasStopped = !isUp;
    account.leftBlocks = isUp ? 0 : account.blocks;
    account.leftBytes = isUp ? 0 : account.bytes;
}

HmCheckingHeap::Accounts HmCheckingHeap::getAccounts()
{
    State& state = getState();
    const Lock lock(state.mutex);
    return Accounts(state.accounts.begin(), state.accounts.end());
}

unsigned int HmCheckingHeap::getFaultCount() noexcept
{
    State& state = getState();
    const Lock lock(state.mutex);
    return state.faults;
}

void HmCheckingHeap::getLastFault(char* text, std::size_t size) noexcept
{
    State& state = getState();
    const Lock lock(state.mutex);
    std::snprintf(text, size, "%s", state.lastFault);
}

} // namespace Kr
