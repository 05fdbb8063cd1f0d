// Variables of a program that starts up: their sources in order, what is left for the application,
// late libraries, and a start that fails. The environment of each case is set by the build.

#include "scenario.h"

#include <ownSettings.h>

#include <base/inContextAlias.h>
#include <base/inContextAliasMgrBase.h>
#include <base/inEx.h>
#include <base/inInit.imp>
#include <base/inInitGuard.h>
#include <base/inReinitGuard.h>
#include <base/inSettings.h>
#include <base/inVariable.h>
#include <base/inVariableEx.h>
#include <base/krInitPackages.h>

#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace
{

int started = 0;

} // namespace

namespace KrInit
{

struct viewer
{
    static constexpr const char* name = "viewer";
    using Dependencies = Kr::InDependencies<base>;
    static void start();
    static void stop();
};

struct effects
{
    static constexpr const char* name = "effects";
    using Dependencies = Kr::InDependencies<viewer>;
    static void start() {}
    static void stop() {}
};

} // namespace KrInit

template class Kr::InInit<KrInit::viewer>;
template class Kr::InInit<KrInit::effects>;

namespace
{

enum class Shading
{
    Flat,
    Smooth
};

// Before the variables, as when another source holds them.
const Kr::InContextAlias samplesAlias("viewer.samples", "--samples", "VIEWER_SAMPLES");
const Kr::InContextAlias raysAlias("viewer.samples", "--rays", "VIEWER_RAYS");
const Kr::InContextAlias titleAlias("viewer.title", nullptr, "VIEWER_TITLE");
const Kr::InContextAlias shadingAlias("viewer.shading", "--shading", "VIEWER_SHADING");

Kr::InInit<KrInit::viewer> viewerPackage;
const Kr::InVariable<std::int32_t> samples(viewerPackage, "viewer.samples", 4, "", {1, 64});
const Kr::InVariable<std::string> title(viewerPackage, "viewer.title", "untitled", "");
const Kr::InVariable<Shading> shading(viewerPackage, "viewer.shading", Shading::Smooth, "",
                                      {{"flat", Shading::Flat}, {"smooth", Shading::Smooth}});

void expectText(const std::string& text, const char* expected, int line)
{
    Scenario::check(text == expected, text.c_str(), line);
}

std::string dump()
{
    std::ostringstream text;
    Kr::InSettings::dumpAll(text);
    return withoutLibrary(text.str());
}

/// Starts the program with these words, and stops it at the end of the scope.
class Program
{
public:
    explicit Program(std::vector<const char*> words)
    {
        words.insert(words.begin(), "program");
        int count = static_cast<int>(words.size());
        const char* const* arguments = words.data();
        _guard.emplace(count, arguments);
    }

private:
    std::optional<Kr::InInitGuard> _guard;
};

/// VIEWER_SAMPLES=16, VIEWER_RAYS=17, VIEWER_TITLE=, VIEWER_SHADING=flat
void precedence()
{
    Kr::InSettings::setOverride("viewer.samples", "32");
    const Program program({"--samples=8", "--rays", "9", "--shading=smooth"});
    SCENARIO_CHECK(started == 1); // the start routine read the value
    expectText(dump(),
               "viewer.samples = '32', from the override\n"
               "    not option --rays: '9'\n"
               "    not option --samples: '8'\n"
               "    not environment variable VIEWER_SAMPLES: '16'\n"
               "    not environment variable VIEWER_RAYS: '17'\n"
               "    not the default: '4'\n"
               "viewer.shading = 'smooth', from option --shading\n"
               "    not environment variable VIEWER_SHADING: 'flat'\n"
               "    not the default: 'smooth'\n"
               "viewer.title = '', from environment variable VIEWER_TITLE\n"
               "    not the default: 'untitled'\n",
               __LINE__);
}

/// VIEWER_SAMPLES=many, VIEWER_RAYS=17, VIEWER_SHADING=
void rubbishInTheEnvironment()
{
    std::ostringstream output;
    std::streambuf* const standardOutput = std::cout.rdbuf(output.rdbuf());
    {
        const Program program({});
        expectText(dump(),
                   "viewer.samples = '17', from environment variable VIEWER_RAYS\n"
                   "    not environment variable VIEWER_SAMPLES: 'many', malformed\n"
                   "    not the default: '4'\n"
                   "viewer.shading = 'smooth', from the default\n"
                   "    not environment variable VIEWER_SHADING: '', malformed\n"
                   "viewer.title = 'untitled', from the default\n",
                   __LINE__);
    }
    std::cout.rdbuf(standardOutput);
    expectText(output.str(),
               "Variable 'viewer.samples': the value 'many' of environment variable VIEWER_SAMPLES "
               "is malformed, expected an integer from 1 to 64; skipped.\n"
               "Variable 'viewer.shading': the value '' of environment variable VIEWER_SHADING is "
               "malformed, expected one of flat, smooth; skipped.\n",
               __LINE__);
}

void rubbishOnTheCommandLine()
{
    SCENARIO_CHECK_THROWS(
        Program({"--samples=8", "--shading=0", "x"}), Kr::InVariableEx::ExMalformedValue,
        "Variable 'viewer.shading': the value '0' of option --shading is malformed, expected one "
        "of flat, smooth.");
    SCENARIO_CHECK(started == 0);
    SCENARIO_CHECK(!Kr::InInit<KrInit::viewer>::isInitialized());
    SCENARIO_CHECK(Kr::InInit<KrInit::base>::isInitialized());
    SCENARIO_CHECK_THROWS(
        shading.getValue(), Kr::InEx::ExInvalidObject,
        "Trying to access an object that has an invalid value: 'viewer.shading'.");
    SCENARIO_CHECK_THROWS( // although it has been started
        samples.getValue(), Kr::InEx::ExUninitializedObject,
        "Trying to access an object that is not fully initialized: 'viewer.samples'.");
    expectText(dump(),
               "viewer.samples: its package failed to start\n"
               "    not option --samples: '8'\n"
               "    not the default: '4'\n"
               "viewer.shading: invalid\n"
               "    not option --shading: '0', malformed\n"
               "    not the default: 'smooth'\n"
               "viewer.title: its package failed to start\n"
               "    not the default: 'untitled'\n",
               __LINE__);
    SCENARIO_CHECK(Kr::InContextAliasMgrBase::getRemainingWords().size() == 2);
    Kr::InSettings::setOverride("viewer.shading", "flat"); // for a further attempt
    Kr::InInitMgr::getInstance().finalize();
}

void lateLibrary()
{
    const Program program({"--effects.bloom", "0.5", "x", "--samples=8"});
    SCENARIO_CHECK(Kr::InContextAliasMgrBase::getRemainingWords().size() == 4);

    // A second command line, and a library that is loaded later.
    const char* const more[] = {"--effects.bloom=0.25"};
    const char* const* arguments = more;
    int count = 1;
    Kr::InInitMgr::getInstance().initialize(count, arguments);
    Kr::InSettings::setOverride("effects.passes", "3");
    std::optional<Kr::InReinitGuard> guard(std::in_place);
    static Kr::InInit<KrInit::effects> effectsPackage;
    const Kr::InVariable<double> bloom(effectsPackage, "effects.bloom", 0., "");
    const Kr::InVariable<std::int32_t> passes(effectsPackage, "effects.passes", 1, "");
    guard.reset();
    SCENARIO_CHECK(bloom.getValue() == .25);
    SCENARIO_CHECK(passes.getValue() == 3);
    SCENARIO_CHECK(Kr::InContextAliasMgrBase::getRemainingWords().size() == 2);
}

void stop()
{
    Kr::InSettings::setOverride("nobody", "1");
    {
        const Program program({"x"});
        SCENARIO_CHECK(samples.getValue() == 4);
    }
    SCENARIO_CHECK_THROWS(
        samples.getValue(), Kr::InEx::ExUninitializedObject,
        "Trying to access an object that is not fully initialized: 'viewer.samples'.");
    SCENARIO_CHECK(Kr::InContextAliasMgrBase::getRemainingWords().empty());
    // The table of aliases stays closed although the command line has been released.
    SCENARIO_CHECK_THROWS(
        Kr::InContextAlias("viewer.title", "--title"), Kr::InEx::ExNoNewContextAliasAfterInit,
        "Trying to do post initialization registration of context alias instance: 'viewer.title' "
        "(key: --title).");
}

} // namespace

void KrInit::viewer::start()
{
    if (samples.getSource() == Kr::InNamedVariable::Source::Override)
        SCENARIO_CHECK(samples.getValue() == 32);
    ++started;
}

void KrInit::viewer::stop()
{
    SCENARIO_CHECK(samples.getValue() >= 1); // variables outlive the stop routine
}

int main(int argc, char** argv)
{
    return Scenario::run({{"precedence", precedence},
                          {"rubbishInTheEnvironment", rubbishInTheEnvironment},
                          {"rubbishOnTheCommandLine", rubbishOnTheCommandLine},
                          {"lateLibrary", lateLibrary},
                          {"stop", stop}},
                         argc, argv);
}
