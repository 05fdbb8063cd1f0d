#include "plugins.h"

#include <base/inInit.imp>
#include <base/inReinitGuard.h>

namespace KrInit
{

struct egg;

struct hen
{
    static constexpr const char* name = "hen";
    using Dependencies = Kr::InDependencies<egg>;
    static void start() {}
    static void stop() {}
};

struct egg
{
    static constexpr const char* name = "egg";
    using Dependencies = Kr::InDependencies<hen>;
    static void start() {}
    static void stop() {}
};

} // namespace KrInit

template class Kr::InInit<KrInit::hen>;
template class Kr::InInit<KrInit::egg>;

void loadPlugins()
{
    const Kr::InReinitGuard guard; // starts at its end what registers meanwhile
    static const Kr::InInit<KrInit::hen> henPackage;
    static const Kr::InInit<KrInit::egg> eggPackage;
}
