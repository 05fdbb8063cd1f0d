#include "shortMemory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<long> countdown{0}; // to the allocation that fails
std::atomic<bool> isArmed{false};
std::atomic<bool> failsForGood{false};
std::atomic<bool> hasFailed{false};

bool mustFail()
{
    if (!isArmed)
        return false;
    const long left = --countdown;
    const bool fails = left == 0 || (left < 0 && failsForGood);
    if (fails)
        hasFailed = true;
    return fails;
}

} // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return mustFail() ? nullptr : std::malloc(size != 0 ? size : 1);
}

void* operator new(std::size_t size)
{
    if (void* memory = operator new(size, std::nothrow))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void ShortMemory::begin(long n, bool forGood)
{
    hasFailed = false;
    countdown = n;
    failsForGood = forGood;
    isArmed = true;
}

bool ShortMemory::end()
{
    isArmed = false;
    return hasFailed;
}
