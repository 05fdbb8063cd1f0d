#pragma once

/// @file
/// The heap that checks: keeps account of every block that it hands out.
///
/// A block is one of the runtime's allocator with a guard behind it, and what is known of it stands
/// in a table aside. So a block may be released by code that does not know of the checks, and the
/// other way round.
///
/// Everything here is called from the global `new` and `delete`: nothing in it uses them.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <vector>

namespace Kr
{

/// Takes the storage of a standard container straight from the runtime.
template <class T>
class HmMallocAllocator
{
public:
    using value_type = T;

    HmMallocAllocator() noexcept = default;
    template <class U>
    HmMallocAllocator(const HmMallocAllocator<U>&) noexcept // NOLINT: converting, as containers ask
    {
    }

    T* allocate(std::size_t count)
    {
        // NOLINTNEXTLINE(bugprone-sizeof-expression): also for the buckets of a map, pointers
        void* const storage = std::malloc(count * sizeof(T));
        if (storage == nullptr)
            throw std::bad_alloc();
        return static_cast<T*>(storage);
    }
    void deallocate(T* storage, std::size_t) noexcept { std::free(storage); }

    friend bool operator==(const HmMallocAllocator&, const HmMallocAllocator&) { return true; }
    friend bool operator!=(const HmMallocAllocator&, const HmMallocAllocator&) { return false; }
};

class HmCheckingHeap
{
public:
    static constexpr std::size_t depth = 12; ///< of a call stack
    static constexpr std::size_t nameSize = 64;

    /// Who owns what is allocated outside of any package.
    static constexpr std::uint32_t program = 0;

    struct Block
    {
        void* address;
        std::size_t size;
        std::size_t guard; ///< bytes behind the block
        std::uint64_t number;
        std::uint32_t owner;
        void* frames[depth]; ///< from the innermost; ends with a null if there are fewer
    };
    using Blocks = std::vector<Block, HmMallocAllocator<Block>>;

    struct Account
    {
        char name[nameSize];
        std::size_t blocks;
        std::size_t bytes;
        std::size_t peakBytes;
        std::uint64_t allocations;
        std::size_t leftBlocks; ///< as it stopped
        std::size_t leftBytes;
        bool isUp;
        bool hasStopped;
    };
    using Accounts = std::vector<Account, HmMallocAllocator<Account>>;

    struct Settings
    {
        bool hasGuards = true;
        bool hasQuarantine = false;
        std::size_t quarantineLength = 1000;
        std::size_t quarantineThreshold = 4096;
        unsigned int checkEvery = 0; ///< allocations; 0 for never
        bool abortsAtFault = true;
    };

    static bool isActive() noexcept;
    static void activate() noexcept;
    static void setSettings(const Settings& settings) noexcept;

    /// Null if there is no memory. The origin is the address that `new` returns to.
    static void* allocate(std::size_t size, const void* origin) noexcept;
    static void release(void* address) noexcept;

    /// The live block that begins there, or that holds the address.
    static bool find(const void* address, Block& block) noexcept;
    static bool findAround(const void* address, Block& block) noexcept;

    /// The live blocks of those numbers, from the first to the last, in their order.
    static Blocks getBlocks(std::uint64_t first, std::uint64_t last);

    /// The number of the newest block.
    static std::uint64_t getLastNumber() noexcept;

    /// Reports every block with a damaged guard, and every one in quarantine that was written to.
    static void check() noexcept;
    static void freeQuarantine() noexcept;

    // Accounts

    static std::uint32_t findOwner(const char* name) noexcept;
    static const char* getOwnerName(std::uint32_t owner) noexcept;

    /// Makes the owner that of the calling thread, and returns the one before.
    static std::uint32_t setCurrentOwner(std::uint32_t owner) noexcept;
    static void setUp(std::uint32_t owner, bool isUp) noexcept;
    static Accounts getAccounts();

    // Faults

    static unsigned int getFaultCount() noexcept;

    /// Copies the newest fault's text.
    static void getLastFault(char* text, std::size_t size) noexcept;
};

} // namespace Kr
