#pragma once

/// @file
/// Internal to the library: what the output path does that may find no memory. It raises nothing:
/// a thread that drains is anybody's, and may be ending the process.

#include <new>

namespace Kr
{

/// Returns whether the action ran to its end; if not, memory was short.
template <class Action>
bool lgTry(Action action) noexcept
{
    try
    {
        action();
        return true;
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
}

} // namespace Kr
