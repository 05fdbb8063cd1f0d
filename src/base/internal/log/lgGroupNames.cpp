#include <base/internal/log/lgGroupNames.h>

#include <deque>
#include <limits>
#include <mutex>
#include <string>
#include <unordered_map>

namespace Kr
{

namespace
{

constexpr std::uint16_t lastNumber = std::numeric_limits<std::uint16_t>::max();

/// Never destroyed: threads may log while the process ends.
struct Names
{
    std::mutex mutex;
    std::deque<std::string> texts = {""}; // by number; what is in it stays where it is
    std::unordered_map<std::string_view, std::uint16_t> numbers;
    LgGroupNames::Watcher* watcher = nullptr;
};

Names& names()
{
    static Names& instance = *new Names;
    return instance;
}

} // namespace

std::mutex& LgGroupNames::getMutex()
{
    return names().mutex;
}

std::uint16_t LgGroupNames::getNumber(const char* name)
{
    const std::lock_guard<std::mutex> lock(names().mutex);
    const auto found = names().numbers.find(name);
    if (found != names().numbers.end())
        return found->second;
    const std::size_t count = names().texts.size();
    if (count == lastNumber)
        return lastNumber;
    const std::string& text = names().texts.emplace_back(name);
    if (names().watcher != nullptr)
        names().watcher->nameAdded(static_cast<std::uint16_t>(count), text);
    return names().numbers[text] = static_cast<std::uint16_t>(count);
}

void LgGroupNames::setWatcher(Watcher* watcher)
{
    const std::lock_guard<std::mutex> lock(names().mutex);
    names().watcher = watcher;
    for (std::size_t number = 1; number < names().texts.size(); ++number)
        watcher->nameAdded(static_cast<std::uint16_t>(number), names().texts[number]);
}

void LgGroupNames::removeWatcher(const Watcher* watcher)
{
    const std::lock_guard<std::mutex> lock(names().mutex);
    if (names().watcher == watcher)
        names().watcher = nullptr;
}

std::string_view LgGroupNames::getName(std::uint16_t number)
{
    const std::lock_guard<std::mutex> lock(names().mutex);
    return number == lastNumber ? "(other)" : std::string_view(names().texts.at(number));
}

} // namespace Kr
