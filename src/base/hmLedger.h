#pragma once

/// @file
/// Who holds how much of the checked heap: one account for each package.
///
/// A program that includes `hmCheckedNew.h` has its blocks counted; without it the ledger is empty.
/// What a package allocates while it starts and stops goes to its account. At other times a scope
/// says whom the thread allocates for:
/// @code{.cpp}
/// void castShadows()
/// {
///     const Kr::HmLedger::Scope scope("shadows");
///     new double[1000]; // goes to the account of the package "shadows"
/// }
/// void report()
/// {
///     Kr::HmLedger::print(std::cout);
/// }
/// @endcode
/// A block stays on the account that it was allocated for, whoever releases it. When a package has
/// stopped, the account says what it left behind.

#include <base/krBaseApi.h>
#include <base/vector.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>

namespace Kr
{

class KR_BASE_API HmLedger
{
public:
    struct Account
    {
        std::string package; ///< "(program)" for what is allocated outside of any
        std::size_t blocks;  ///< held now
        std::size_t bytes;
        std::size_t peakBytes;
        std::uint64_t allocations; ///< since the beginning
        std::size_t leftBlocks;    ///< when it stopped
        std::size_t leftBytes;
        bool isUp;
    };

    /// Has the calling thread allocate for a package until the end of the scope.
    class KR_BASE_API Scope
    {
    public:
        explicit Scope(const char* package);
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope();

    private:
        std::uint32_t _previous;
    };

    /// Whether the process's heap is checked.
    static bool isActive() noexcept;

    /// All accounts, in the order of their first allocation.
    static Vector<Account> getAccounts();

    /// Writes the accounts as a table.
    static void print(std::ostream& os);

    /// How many faults were found: writes outside of blocks. Each is reported on standard error,
    /// and ends the process unless `HmHeapMgr::setContinueOnError` says otherwise.
    static unsigned int getFaultCount() noexcept;

    /// What the newest said; empty if there was none.
    static std::string getLastFault();

    // What hmCheckedNew.h calls

    static bool activate() noexcept;

    /// @param origin the address that `new` returns to
    static void* allocate(std::size_t size, const void* origin);
    static void* tryAllocate(std::size_t size, const void* origin) noexcept;
    static void release(void* block) noexcept;
};

} // namespace Kr
