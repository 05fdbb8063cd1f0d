// Libraries that are loaded at run time, the list of what is loaded, and whether it all fits.

#include "scenario.h"

#include <base/dbgBuildInfoMgr.h>
#include <base/inInit.imp>
#include <base/inInitGuard.h>
#include <base/inReinitGuard.h>
#include <base/krInitPackages.h>
#include <base/lmList.h>
#include <base/osEnv.h>
#include <base/osSharedLib.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

namespace
{

/// The whole library, up.
class Library
{
public:
    Library()
        : _guard(_count, _arguments)
    {
    }

private:
    int _count = 0;
    const char* const* _arguments = nullptr;
    Kr::InInitGuard _guard;
};

/// What the plugin's packages did, which they tell through the environment.
std::string pluginEvents()
{
    const char* const events = Kr::OsEnv::getVariable("KR_PLUGIN_EVENTS");
    return events != nullptr ? events : "";
}

bool isListed(const char* name)
{
    return Kr::LmList().find(name) != nullptr;
}

bool begins(const std::string& text, const std::string& beginning)
{
    return text.compare(0, beginning.size(), beginning) == 0;
}

/// The reason of the error that loading that library raises.
template <class Error>
std::string failure(const std::string& path)
{
    Kr::OsSharedLib library;
    try
    {
        library.load(path.c_str());
    }
    catch (const Error& error)
    {
        SCENARIO_CHECK(!library.isLoaded() && *library.getPath() == '\0');
        return error.getReason();
    }
    return "nothing raised";
}

/// By a bare name from beside the program, and in the list as long as it is loaded.
void load()
{
    const Library up;
    SCENARIO_CHECK(!isListed(KR_TEST_PLUGIN));
    {
        Kr::OsSharedLib plugin(KR_TEST_PLUGIN);
        SCENARIO_CHECK(pluginEvents() == "+effects+blending"); // up already
        SCENARIO_CHECK(plugin.findSymbol("noSuchSymbol") == nullptr);
        auto* const blend = plugin.getFunction<int(int, int)>("krTestBlend");
        SCENARIO_CHECK(blend(3, 4) == 34);

        const Kr::LmList list;
        const Kr::LmList::Library* const listed = list.find(reinterpret_cast<const void*>(blend));
        SCENARIO_CHECK(listed != nullptr && listed == list.find(KR_TEST_PLUGIN));
        SCENARIO_CHECK(listed->begin < listed->end);
        SCENARIO_CHECK(listed->path.size() > listed->name.size() &&
                       listed->path.rfind('\\' + listed->name) ==
                           listed->path.size() - listed->name.size() - 1);
        SCENARIO_CHECK(
            begins(list.describe(reinterpret_cast<const void*>(blend)), KR_TEST_PLUGIN "+0x"));

        Kr::OsSharedLib taken(std::move(plugin));
        SCENARIO_CHECK(!plugin.isLoaded() && taken.isLoaded()); // NOLINT: asked on purpose
        plugin = std::move(taken);
        SCENARIO_CHECK(std::string(plugin.getPath()) == KR_TEST_PLUGIN);
        SCENARIO_CHECK_THROWS(plugin.load(KR_TEST_PLUGIN), Kr::ExInternalError,
                              "Assertion '!isLoaded()' failed.");
    }
    SCENARIO_CHECK(!isListed(KR_TEST_PLUGIN));
}

/// Under a guard around them, libraries start together; before the first pass, with all others.
void guards()
{
    const Kr::OsSharedLib early(KR_TEST_PLUGIN);
    SCENARIO_CHECK(pluginEvents().empty());
    {
        const Library up;
        SCENARIO_CHECK(pluginEvents() == "+effects+blending");
    }
    SCENARIO_CHECK(pluginEvents() == "+effects+blending-blending-effects");
}

void outerGuard()
{
    std::unique_ptr<Kr::OsSharedLib>
        plugin; // outlives the library, which stops its packages with the others
    const Library up;
    {
        const Kr::InReinitGuard guard;
        plugin = std::make_unique<Kr::OsSharedLib>(KR_TEST_PLUGIN);
        SCENARIO_CHECK(pluginEvents().empty());
    }
    SCENARIO_CHECK(pluginEvents() == "+effects+blending");
}

/// A start routine that raises: the library stays, since one of its packages is up.
void startFails()
{
    const Library up;
    Kr::OsEnv::putVariable("KR_PLUGIN_FAILS=1");
    SCENARIO_CHECK(failure<Kr::ExBase>(KR_TEST_PLUGIN) == "Init error in package: 'blending'.");
    SCENARIO_CHECK(isListed(KR_TEST_PLUGIN) && pluginEvents() == "+effects");
}

void cannotLoad()
{
    const Library up;
    using ExNotLoaded = Kr::OsSharedLibEx::ExNotLoaded;
    const std::string missing = failure<ExNotLoaded>("no/such/library");
    const std::string prefix = "Cannot load the library '";
    SCENARIO_CHECK(begins(missing, prefix + "no/such/library': "));
    SCENARIO_CHECK(missing.size() > prefix.size() + 30); // the system's reason

    namespace fs = std::filesystem;
    const fs::path wrong = fs::temp_directory_path() / "kr-not-a-library.dll";
    std::ofstream(wrong) << "This is a text.";
    const std::string reason = failure<ExNotLoaded>(wrong.string());
    fs::remove(wrong);
    SCENARIO_CHECK(begins(reason, prefix + wrong.string() + "': "));
    SCENARIO_CHECK(reason.substr(prefix.size() + wrong.string().size()) !=
                   missing.substr(prefix.size() + 15)); // another reason

    SCENARIO_CHECK(begins(failure<ExNotLoaded>(std::string(2000, 'x')),
                          prefix + std::string(256, 'x') + "': "));
    SCENARIO_CHECK(failure<Kr::ExInternalError>("") ==
                   "Assertion 'path != nullptr && *path != '\\0'' failed.");

    const Kr::OsSharedLib plugin(KR_TEST_PLUGIN);
    try
    {
        plugin.getSymbol("noSuchSymbol");
        SCENARIO_CHECK(false);
    }
    catch (const Kr::OsSharedLibEx::ExNoSymbol& error)
    {
        SCENARIO_CHECK(begins(error.getReason(),
                              "The library '" KR_TEST_PLUGIN "' has no symbol 'noSuchSymbol': "));
    }
}

// Build information

constexpr const char* compiler = KR_BUILD_COMPILER;
constexpr const char* runtime = KR_BUILD_RUNTIME;

std::string firstMismatch()
{
    const auto sentences = Kr::DbgBuildInfoMgr::getInstance().getMismatches();
    return sentences.empty() ? "" : sentences.front();
}

void mismatches()
{
    const std::string loaded = Kr::getVersionText();
    const Kr::DbgBuildInfoMgr& manager = Kr::DbgBuildInfoMgr::getInstance();
    SCENARIO_CHECK(manager.find("libKRbase")->getVersion() == loaded);
    SCENARIO_CHECK(manager.find("Effects") == nullptr && firstMismatch().empty());
    const struct
    {
        std::int32_t baseVersion;
        const char* runtime;
        const char* stamp;
        std::string sentence;
    } cases[] = {
        {KR_VERSION, runtime, "", ""},
        {KR_VERSION, runtime, "7", ""}, // not asked for
        {KR_MAKE_VERSION(KR_VERSION_MAJOR, 999, 0), runtime, "",
         "Effects 2.1 was built with libKRbase 1.999.0, but libKRbase " + loaded + " is loaded."},
        {KR_MAKE_VERSION(0, 9, 12), runtime, "",
         "Effects 2.1 was built with libKRbase 0.9.12, but libKRbase " + loaded + " is loaded."},
        {KR_VERSION, "libstdc++ (debug mode)", "",
         std::string("Effects 2.1 uses libstdc++ (debug mode), but libKRbase uses ") + runtime +
             "."},
    };
    for (const auto& entry : cases)
    {
        const Kr::DbgBuildInfo effects("Effects", "2.1", entry.baseVersion, compiler, entry.runtime,
                                       "release", entry.stamp);
        SCENARIO_CHECK(manager.find("Effects") == &effects);
        SCENARIO_CHECK(firstMismatch() == entry.sentence);
        const Kr::DbgBuildInfo same("Effects", "2.1", entry.baseVersion, compiler, entry.runtime,
                                    "release", entry.stamp);
        SCENARIO_CHECK(firstMismatch() == entry.sentence);
    }
    const Kr::DbgBuildInfo effects("Effects", "2.1", KR_VERSION, compiler, runtime, "debug", "");
    const Kr::DbgBuildInfo other("Effects", "2.2", KR_VERSION, nullptr, runtime, "debug", "");
    SCENARIO_CHECK(begins(firstMismatch(), "Effects is loaded twice, as Effects 2.1, "));
}

/// A sentence stops the start, and what is then loaded is turned away before its packages start.
void mismatchStops()
{
    {
        const Kr::DbgBuildInfo effects("Effects", "2.1", KR_MAKE_VERSION(2, 0, 0), compiler,
                                       runtime, "release", "");
        int count = 0;
        const char* const* arguments = nullptr;
        const std::string reason = firstMismatch();
        SCENARIO_CHECK_THROWS(Kr::InInitMgr::getInstance().initialize(count, arguments),
                              Kr::DbgBuildInfoEx::ExMismatch, reason.c_str());
    }
    SCENARIO_CHECK(firstMismatch().empty());
}

void mismatchIsTurnedAway()
{
    const Library up;
    Kr::OsEnv::putVariable("KR_PLUGIN_BASE_VERSION=2000000");
    SCENARIO_CHECK(begins(failure<Kr::DbgBuildInfoEx::ExMismatch>(KR_TEST_PLUGIN),
                          "Plugin 0.1 was built with libKRbase 2.0.0, but "));
    SCENARIO_CHECK(!isListed(KR_TEST_PLUGIN) && pluginEvents().empty());
    SCENARIO_CHECK(firstMismatch().empty());
}

/// With the variables that the build sets for these two.
void notValidated()
{
    const Library up;
    Kr::OsEnv::putVariable("KR_PLUGIN_BASE_VERSION=2000000");
    const Kr::OsSharedLib plugin(KR_TEST_PLUGIN);
    SCENARIO_CHECK(!firstMismatch().empty());
    SCENARIO_CHECK(pluginEvents() == "+effects+blending");
}

void stamps()
{
    const Library up;
    const Kr::DbgBuildInfo effects("Effects", "2.1", KR_VERSION, compiler, runtime, "release", "7");
    SCENARIO_CHECK(firstMismatch() == "Effects 2.1 has the stamp 7, but libKRbase has no stamp.");
}

constexpr Scenario::Case cases[] = {
    {"load", load},
    {"guards", guards},
    {"outerGuard", outerGuard},
    {"startFails", startFails},
    {"cannotLoad", cannotLoad},
    {"mismatches", mismatches},
    {"mismatchStops", mismatchStops},
    {"mismatchIsTurnedAway", mismatchIsTurnedAway},
    {"notValidated", notValidated},
    {"stamps", stamps},
};

} // namespace

int main(int argc, char** argv)
{
    return Scenario::run(cases, argc, argv);
}
