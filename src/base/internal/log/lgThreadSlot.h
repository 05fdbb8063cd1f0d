#pragma once

/// @file
/// Internal to the library: the queue that a thread's statements go into, found in the fastest way
/// that the system has. Null at first.

#include <base/krBaseApi.h>

namespace Kr
{

class LgQueue;

class KR_BASE_API LgThreadSlot
{
public:
#ifdef KR_BASE_THREAD_LOCAL
    static LgQueue* get() noexcept
    {
        return _queue;
    }
    static void set(LgQueue* queue) noexcept
    {
        _queue = queue;
    }

private:
    static KR_BASE_THREAD_LOCAL LgQueue* _queue;
#else
    static LgQueue* get() noexcept;
    static void set(LgQueue* queue) noexcept;
#endif
};

} // namespace Kr
