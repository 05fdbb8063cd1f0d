// A library that is loaded at run time and brings two packages along.

#include <base/inEx.h>
#include <base/inInit.imp>
#include <base/krInitPackages.h>
#include <base/osEnv.h>
#include <base/trace.h>

#include <string>

namespace
{

void tell(const char* event)
{
    const char* const told = Kr::OsEnv::getVariable("KR_PLUGIN_EVENTS");
    const std::string before = told != nullptr ? told : "";
    Kr::OsEnv::putVariable(("KR_PLUGIN_EVENTS=" + before + event).c_str());
}

} // namespace

namespace KrInit
{

struct effects
{
    static constexpr const char* name = "effects";
    using Dependencies = Kr::InDependencies<base, logger>;
    static void start() { tell("+effects"); }
    static void stop() { tell("-effects"); }
};

struct blending
{
    static constexpr const char* name = "blending";
    using Dependencies = Kr::InDependencies<effects>;
    static void start()
    {
        if (Kr::OsEnv::getVariable("KR_PLUGIN_FAILS") != nullptr)
            Kr::raise<Kr::InEx::ExPackageInitError>(KR_HERE, name);
        tell("+blending");
    }
    static void stop() { tell("-blending"); }
};

} // namespace KrInit

static Kr::InInit<KrInit::blending> blendingPackage;
static Kr::InInit<KrInit::effects> effectsPackage;
