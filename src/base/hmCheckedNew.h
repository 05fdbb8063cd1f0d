#pragma once

/// @file
/// Has the heap of a program checked, for development. Include it in one source of the program, and
/// on Windows in one source of each further library whose blocks shall be checked:
/// @code{.cpp}
/// // checkedHeap.cpp, built in development only
/// #include <base/hmCheckedNew.h>
/// @endcode
/// It replaces the global `new` and `delete`. Each block is counted in the account of a package
/// (`HmLedger`), remembers where it was allocated, and has guard bytes behind it; released blocks
/// may be kept in quarantine. `HmHeapMgr` says how much of this is checked and when, and its
/// operations, which otherwise do nothing, report what is found.
///
/// Pitfalls: an allocation takes microseconds instead of nanoseconds. `new` for types of extended
/// alignment stays the runtime's own, and is not counted. On Windows the blocks that a library
/// without this header allocates are not counted either.

#include <base/hmLedger.h>

#include <cstddef>
#include <new>

// NOLINTBEGIN(misc-definitions-in-headers): for one source of a program

namespace
{

[[maybe_unused]] const bool krHeapIsChecked = Kr::HmLedger::activate();

} // namespace

// Not inlined: each tells where it returns to.

[[gnu::noinline]] void* operator new(std::size_t size)
{
    return Kr::HmLedger::allocate(size, __builtin_return_address(0));
}

[[gnu::noinline]] void* operator new[](std::size_t size)
{
    return Kr::HmLedger::allocate(size, __builtin_return_address(0));
}

[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return Kr::HmLedger::tryAllocate(size, __builtin_return_address(0));
}

[[gnu::noinline]] void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return Kr::HmLedger::tryAllocate(size, __builtin_return_address(0));
}

void operator delete(void* block) noexcept
{
    Kr::HmLedger::release(block);
}

void operator delete[](void* block) noexcept
{
    Kr::HmLedger::release(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    Kr::HmLedger::release(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    Kr::HmLedger::release(block);
}

void operator delete(void* block, const std::nothrow_t&) noexcept
{
    Kr::HmLedger::release(block);
}

void operator delete[](void* block, const std::nothrow_t&) noexcept
{
    Kr::HmLedger::release(block);
}

// NOLINTEND(misc-definitions-in-headers)
