#pragma once

// The scene: a service that exists exactly while its package is up.

#include <base/exBase.h>
#include <base/inSingleton.h>
#include <base/krInitPackages.h>

#include <string>
#include <vector>

namespace KrInit
{

struct scene
{
    static constexpr const char* name = "scene";
    using Dependencies = Kr::InDependencies<base>;
    static void start();
    static void stop();
};

} // namespace KrInit

class SceneEx : public Kr::ExBase
{
public:
    class ExNoSuchObject;

protected:
    using ExBase::ExBase;
};

class SceneEx::ExNoSuchObject
    : public Kr::ExConcrete<SceneEx::ExNoSuchObject, std::runtime_error, SceneEx>
{
public:
    ExNoSuchObject(const char* file, int line, const char* name);
};

class Scene;
extern template class Kr::InSingleton<Scene>; // before the accessor that uses it

class Scene
{
public:
    static Scene& getInstance() { return *Kr::InSingleton<Scene>::getInstance(); }

    explicit Scene(int sphereCount);
    virtual ~Scene() = default;

    std::size_t size() const { return _names.size(); }

    /// The index of an object. Raises `SceneEx::ExNoSuchObject`.
    std::size_t find(const std::string& name) const;

private:
    std::vector<std::string> _names;
};
