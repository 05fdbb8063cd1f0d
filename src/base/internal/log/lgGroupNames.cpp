#include <base/internal/log/lgGroupNames.h>

#include <base/internal/errors/immortal.h>

#include <atomic>
#include <limits>
#include <mutex>
#include <string>
#include <unordered_map>

namespace Kr
{

namespace
{

constexpr std::uint16_t lastNumber = std::numeric_limits<std::uint16_t>::max();

/// Threads may log while the process ends.
struct Names
{
    std::mutex mutex;
    std::unordered_map<std::string, std::uint16_t> numbers;
    LgGroupNames::Watcher* watcher = nullptr;
};

Names& names()
{
    static Immortal<Names> instance;
    return *instance;
}

std::atomic<const std::string*> texts[lastNumber]; // by number: keys of `numbers`

} // namespace

std::mutex& LgGroupNames::getMutex()
{
    return names().mutex;
}

std::uint16_t LgGroupNames::getNumber(const char* name)
{
    const std::lock_guard<std::mutex> lock(names().mutex);
    std::string text = name;
    const auto found = names().numbers.find(text);
    if (found != names().numbers.end())
        return found->second;
    const std::size_t number = names().numbers.size() + 1;
    if (number == lastNumber)
        return lastNumber;
    const auto added =
        names().numbers.emplace(std::move(text), static_cast<std::uint16_t>(number)).first;
    texts[number].store(&added->first, std::memory_order_release);
    if (names().watcher != nullptr)
        names().watcher->nameAdded(added->second, added->first);
    return added->second;
}

void LgGroupNames::setWatcher(Watcher* watcher)
{
    const std::lock_guard<std::mutex> lock(names().mutex);
    names().watcher = watcher;
    for (std::size_t number = 1; number <= names().numbers.size(); ++number)
        watcher->nameAdded(static_cast<std::uint16_t>(number), *texts[number].load());
}

void LgGroupNames::removeWatcher(const Watcher* watcher)
{
    const std::lock_guard<std::mutex> lock(names().mutex);
    if (names().watcher == watcher)
        names().watcher = nullptr;
}

std::string_view LgGroupNames::getName(std::uint16_t number) noexcept
{
    if (number == lastNumber)
        return "(other)";
    const std::string* const text = texts[number].load(std::memory_order_acquire);
    return text != nullptr ? std::string_view(*text) : std::string_view();
}

} // namespace Kr
