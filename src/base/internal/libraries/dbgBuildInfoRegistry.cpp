#include <base/internal/libraries/dbgBuildInfoRegistry.h>

#include <algorithm>

namespace Kr
{

DbgBuildInfoRegistry& DbgBuildInfoRegistry::getInstance()
{
    // Outlives every library that has registered.
    static DbgBuildInfoRegistry& registry = *new DbgBuildInfoRegistry;
    return registry;
}

std::string DbgBuildInfoRegistry::formatVersion(std::int32_t version)
{
    return std::to_string(version / 1000000) + '.' + std::to_string(version / 1000 % 1000) + '.' +
           std::to_string(version % 1000);
}

void DbgBuildInfoRegistry::add(const DbgBuildInfo& info)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _infos.push_back(&info);
}

void DbgBuildInfoRegistry::remove(const DbgBuildInfo& info)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _infos.erase(std::remove(_infos.begin(), _infos.end(), &info), _infos.end());
}

std::vector<const DbgBuildInfo*> DbgBuildInfoRegistry::getInfos() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return _infos;
}

} // namespace Kr
