#pragma once

/// @file
/// Internal to the library: the name of a thread as other threads see it, also when the thread has
/// ended.

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>

namespace Kr
{

class ThreadLabel
{
public:
    static constexpr std::size_t size = 32; ///< of a name, its terminator included

    /// That of the calling thread; it follows what the thread is called from then on. A thread that
    /// is ending, or whose end nothing will tell of, gets one of its own each time.
    static std::shared_ptr<ThreadLabel> ofCaller();

    void set(const char* name);

    /// Writes the name into the text, which is emptied if there is none.
    void copyTo(std::string& text) const;

private:
    mutable std::mutex _mutex;
    std::atomic<bool> _isNamed{false};
    char _name[size] = "";
};

} // namespace Kr
