// A library that is loaded at run time and brings two packages along.

#include <base/dbgBuildInfo.h>
#include <base/inEx.h>
#include <base/inInit.imp>
#include <base/krInitPackages.h>
#include <base/osEnv.h>
#include <base/trace.h>

#include <packages_plugin_export.h>

#include <cstdlib>
#include <string>

namespace
{

/// The version that the test wants it to have been built with.
std::int32_t getBaseVersion()
{
    const char* const wanted = Kr::OsEnv::getVariable("KR_PLUGIN_BASE_VERSION");
    return wanted != nullptr ? std::atoi(wanted) : KR_VERSION;
}

const Kr::DbgBuildInfo buildInfo("Plugin", "0.1", getBaseVersion(), KR_BUILD_COMPILER,
                                 KR_BUILD_RUNTIME, KR_BUILD_TYPE, "");

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

extern "C" PACKAGES_PLUGIN_EXPORT int krTestBlend(int first, int second)
{
    return 10 * first + second;
}
