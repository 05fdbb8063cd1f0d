#pragma once

/// @file
/// Internal to the library: memory through which bytes move from one file or pipe to another.

#include <cstddef>
#include <memory>

namespace Kr
{

/// Some processors take several times as long to copy from one page to a place some bytes further
/// in another. What files and pipes hold begins with a page, and what `new` gives often 16 bytes
/// behind.
struct alignas(64) OsTransferBlock
{
    static constexpr unsigned long size = 65536;

    char bytes[size];
};

/// Their bytes are not set: the first transfer does it.
inline std::unique_ptr<OsTransferBlock[]> makeTransferBlocks(std::size_t count)
{
    return std::unique_ptr<OsTransferBlock[]>(new OsTransferBlock[count]);
}

} // namespace Kr
