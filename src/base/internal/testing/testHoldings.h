#pragma once

/// @file
/// What the process holds at a moment.

#include <base/testResult.h>

#include <cstdint>

namespace Kr
{

class TestHoldings
{
public:
    /// Of the heap's ledger, for what the harness itself allocates.
    static constexpr const char* account = "testing";

    /// Counts what is held now, the harness's own blocks left out.
    static TestHoldings count();

    /// What is held at this moment more than at an earlier one.
    TestLeak since(const TestHoldings& earlier) const noexcept;

private:
    static std::int64_t performCountHandles() noexcept; // testHoldingsWindows

    std::int64_t _blocks = 0;
    std::int64_t _bytes = 0;
    std::int64_t _handles = 0;
};

} // namespace Kr
