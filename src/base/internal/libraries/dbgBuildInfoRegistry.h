#pragma once

/// @file
/// The libraries that have registered.

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace Kr
{

class DbgBuildInfo;

class DbgBuildInfoRegistry
{
public:
    static DbgBuildInfoRegistry& getInstance();

    /// "1.2.3" for a version as `KR_MAKE_VERSION` forms it.
    static std::string formatVersion(std::int32_t version);

    void add(const DbgBuildInfo& info);
    void remove(const DbgBuildInfo& info);
    std::vector<const DbgBuildInfo*> getInfos() const;

private:
    mutable std::mutex _mutex; ///< guards the list: libraries load on any thread
    std::vector<const DbgBuildInfo*> _infos;
};

} // namespace Kr
