#include "scene.h"

#include <base/inContextAlias.h>
#include <base/inInit.imp>
#include <base/inSingleton.imp>
#include <base/inVariable.h>
#include <base/trace.h>

#include <algorithm>
#include <iostream>

template class Kr::InSingleton<Scene>;
template class Kr::InInit<KrInit::scene>;

namespace
{

Kr::InInit<KrInit::scene> package;

const Kr::InVariable<std::int32_t> spheres(package, "scene.spheres", 3, "Spheres in the scene",
                                           {0, 1000});
const Kr::InContextAlias spheresAlias("scene.spheres", "--spheres", "STARTUP_SPHERES");

} // namespace

void KrInit::scene::start()
{
    Kr::InSingleton<Scene>::initialize(new Scene(spheres.getValue()));
    std::cout << "scene: started with " << Scene::getInstance().size() << " objects\n";
}

void KrInit::scene::stop()
{
    Kr::InSingleton<Scene>::destroy();
    std::cout << "scene: stopped" << std::endl;
}

SceneEx::ExNoSuchObject::ExNoSuchObject(const char* file, int line, const char* name)
    : ExConcrete(file, line)
{
    setReason("No such object: ");
    setReason(name);
}

Scene::Scene(int sphereCount)
    : _names{"camera", "light"}
{
    for (int i = 0; i < sphereCount; ++i)
        _names.push_back("sphere" + std::to_string(i));
}

std::size_t Scene::find(const std::string& name) const
{
    const auto found = std::find(_names.begin(), _names.end(), name);
    if (found == _names.end())
        Kr::raise<SceneEx::ExNoSuchObject>(KR_HERE, name.c_str());
    return static_cast<std::size_t>(found - _names.begin());
}
