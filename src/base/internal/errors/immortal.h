#pragma once

/// @file
/// Internal to the library: an object that is never destroyed, in memory that is always there.
/// @code{.cpp}
/// struct State
/// {
///     int count = 0;
/// };
///
/// State& state()
/// {
///     static Kr::Immortal<State> instance;
///     return *instance;
/// }
/// @endcode
/// For what threads and static objects may still use while the process ends.

#include <new>

namespace Kr
{

template <class T>
class Immortal
{
public:
    Immortal() { ::new (static_cast<void*>(_storage)) T; }
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    T& operator*() noexcept { return *std::launder(reinterpret_cast<T*>(_storage)); }

private:
    alignas(T) unsigned char _storage[sizeof(T)];
};

} // namespace Kr
