#pragma once

/// @file
/// Internal to the library: the listeners of the process, whatever session runs.

#include <base/lgListener.h>

namespace Kr
{

class LgListeners
{
public:
    static bool isEmpty() noexcept;
    static void notify(const LgMessage& message) noexcept;

private:
    friend class LgListener;

    static void add(LgListener& listener);
    static void remove(LgListener& listener) noexcept;
};

} // namespace Kr
