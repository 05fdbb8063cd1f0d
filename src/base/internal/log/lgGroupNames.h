#pragma once

/// @file
/// Internal to the library: the names of all minor groups that ever were, by number, so that a
/// message can name its group in two bytes, also after the group is gone. May be called by any
/// thread.

#include <cstdint>
#include <mutex>
#include <string_view>

namespace Kr
{
namespace LgGroupNames
{

/// The number of a name, the same for the same text. From 1; the last one is for all names that
/// find no number any more.
std::uint16_t getNumber(const char* name);

/// Is told of every name there is, and from then on of each new one, before its number is known.
/// One at a time.
class Watcher
{
public:
    virtual void nameAdded(std::uint16_t number, std::string_view name) noexcept = 0;

protected:
    ~Watcher() = default;
};
void setWatcher(Watcher* watcher);

/// Ends it, unless another one has taken its place.
void removeWatcher(const Watcher* watcher);

/// To be held while the process forks.
std::mutex& getMutex();

/// The name of that number, for the life of the process; empty for 0. Neither locks nor allocates.
std::string_view getName(std::uint16_t number) noexcept;

} // namespace LgGroupNames
} // namespace Kr
