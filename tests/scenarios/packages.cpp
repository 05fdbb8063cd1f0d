// Starting and stopping packages: each case has a process, and so a manager, of its own.

#include "scenario.h"

#include <base/inContextAliasMgrBase.h>
#include <base/inEx.h>
#include <base/inInit.imp>
#include <base/inInitGuard.h>
#include <base/inReinitGuard.h>
#include <base/inSettings.h>
#include <base/krInitPackages.h>
#include <base/osEnv.h>
#include <base/osSharedLib.h>
#include <base/trace.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iomanip>
#include <iostream>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace Kr;

namespace
{

std::string programFolder;
std::string events; ///< "+name" for each start, "-name" for each stop

/// What the packages of the cases have in common.
template <class Tag>
struct Recorded
{
    static inline std::function<void()> onStart;
    static inline std::function<void()> onStop;

    static void start()
    {
        if (onStart)
            onStart();
        events += std::string("+") + Tag::name;
    }
    static void stop()
    {
        events += std::string("-") + Tag::name;
        if (onStop)
            onStop();
    }
};

} // namespace

#define SCENARIO_PACKAGE(tag, ...)                                                                 \
    struct tag : Recorded<tag>                                                                     \
    {                                                                                              \
        static constexpr const char* name = #tag;                                                  \
        using Dependencies = InDependencies<__VA_ARGS__>;                                          \
    }

namespace KrInit
{

struct absent;  // nobody registers it
struct effects; // the plugin's

struct knotB;
struct knotC;
struct knotD;
SCENARIO_PACKAGE(knotA, knotD);
SCENARIO_PACKAGE(knotB, knotC, knotD);
SCENARIO_PACKAGE(knotC, knotB);
SCENARIO_PACKAGE(knotD, knotA);
SCENARIO_PACKAGE(behindKnot, knotA);
SCENARIO_PACKAGE(selfish, selfish);
SCENARIO_PACKAGE(orphan, absent);

SCENARIO_PACKAGE(red, );
SCENARIO_PACKAGE(green, red);
SCENARIO_PACKAGE(cyan, red);
SCENARIO_PACKAGE(blue, green);
SCENARIO_PACKAGE(alpha, red, red, red);
SCENARIO_PACKAGE(needsLibrary, base, logger);
SCENARIO_PACKAGE(needsEffects, effects);

} // namespace KrInit

namespace
{

using namespace KrInit;

InInitMgr& manager()
{
    return InInitMgr::getInstance();
}

struct NoArguments
{
    int argc = 0;
    const char* const* argv = nullptr;
};

void initialize()
{
    NoArguments none;
    manager().initialize(none.argc, none.argv);
}

using Report = std::ostream& (InInitMgr::*)(std::ostream&) const;

std::string textOf(Report report)
{
    std::ostringstream text;
    (manager().*report)(text);
    return text.str();
}

const auto dump = [] { return textOf(&InInitMgr::dump); };
const auto cycles = [] { return textOf(&InInitMgr::reportCycles); };
const auto graph = [] { return textOf(&InInitMgr::writeGraph); };

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

const char* const needsGuard = "Reinitialize without using the reinitialize guard.";
std::string absentReason()
{
    return std::string("Init Package not registered: '") + InInit<absent>::getType()->name() + "'.";
}

const char* const doubleFinalise = "Multiple calls to finalize().";

/// A package that keeps no record, registered by hand.
struct Plain : InPackageInit
{
    explicit Plain(const char* packageName)
        : InPackageInit(packageName)
    {
        registerPackage();
    }
    void performInitialize() override {}
    void performFinalize() override {}
    void setInitialized(bool /*initialized*/) override {}
    using InPackageInit::addDependency;
};

struct LibraryPackage
{
    const char* name;
    int listed;
    int rank;
};

/// The library's packages in the order of their start.
const LibraryPackage libraryPackages[] = {
    {"initialize", 0, 0}, {"heapMgr", 1, 1},   {"initArg", 1, 1},      {"osal", 1, 1},
    {"initVars", 2, 2},   {"profiling", 2, 2}, {"logger", 3, 3},       {"debugging", 4, 5},
    {"baseMath", 5, 6},   {"random", 5, 6},    {"discreteTime", 5, 7}, {"testing", 7, 7},
    {"base", 12, 12}};

std::string stepLine(const LibraryPackage& package, const char* operation)
{
    return std::string(static_cast<std::size_t>(package.listed), ' ') + "InInit<" + package.name +
           ">::" + operation + "()\n";
}

void libraryStartsInOrderAndStopsInReverse()
{
    std::string takenUp = "-->_nbPckgs:13\n";
    std::vector<std::string> names;
    std::string started;
    std::string stopped;
    std::string known = "No packages waiting to be initialize.\n13 packages currently saved:\n";
    for (const LibraryPackage& package : libraryPackages)
    {
        names.emplace_back(package.name);
        started += stepLine(package, "performInitialize");
        stopped = stepLine(package, "performFinalize") + stopped;
        known += std::string("\t'") + package.name + "' Initialized (" +
                 std::to_string(package.rank) + " dependencies)\n";
    }
    std::sort(names.begin(), names.end());
    for (std::size_t i = 0; i < names.size(); ++i)
        takenUp += "_packagesToInit[" + std::to_string(i) + "]: " + names[i] + "\n";

    std::ostringstream errors;
    std::streambuf* const standardError = std::cerr.rdbuf(errors.rdbuf());
    OsEnv::putVariable("KR_DEBUG_INITIALIZE=1");
    {
        NoArguments none;
        SCENARIO_CHECK(!InInit<logger>::isInitialized());
        const InInitGuard guard(none.argc, none.argv);
        SCENARIO_CHECK(errors.str() == takenUp + started);
        SCENARIO_CHECK(dump() == known);
        SCENARIO_CHECK(InInit<logger>::isInitialized() && InInit<base>::isInitialized());
        errors.str("");
    }
    SCENARIO_CHECK(errors.str() == stopped);
    SCENARIO_CHECK(dump() == "No packages waiting to be initialize.\nNo packages saved.\n");
    SCENARIO_CHECK(!InInit<logger>::isInitialized() && !InInit<base>::isInitialized());

    // The live environment decides at each step.
    errors.str("");
    {
        const InReinitGuard guard;
        const InInit<red> first;
        OsEnv::putVariable("KR_DEBUG_INITIALIZE=");
        const InInit<green> second;
        SCENARIO_CHECK(errors.str() == "Registering Package: InInit<red>\n");
    }
    std::cerr.rdbuf(standardError);
}

/// Raises after it has registered.
struct Unfinished : Plain
{
    Unfinished()
        : Plain("unfinished")
    {
        throw std::runtime_error("unfinished");
    }
};

void programPackagesFollowTheirDependencies()
{
    SCENARIO_CHECK_THROWS(Unfinished(), std::runtime_error, "unfinished");
    const InInit<needsLibrary> e;
    const InInit<blue> d;
    const InInit<alpha> c; // lists one package three times, and so ranks behind blue
    const InInit<green> b;
    const InInit<red> a;
    SCENARIO_CHECK(e.getDependencies().size() == 2);
    initialize();
    SCENARIO_CHECK(events == "+red+green+blue+alpha+needsLibrary");
    SCENARIO_CHECK(contains(dump(), "\t'alpha' Initialized (3 dependencies)\n"));
    SCENARIO_CHECK(contains(dump(), "\t'needsLibrary' Initialized (13 dependencies)\n"));
    SCENARIO_CHECK(cycles() == "No dependency cycles to report.\n");
    events.clear();
    manager().finalize();
    SCENARIO_CHECK(events == "-needsLibrary-alpha-blue-green-red");
}

struct DecimalComma : std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
};

void reportsTheStart()
{
    std::locale::global(std::locale(std::locale(), new DecimalComma));
    const InInit<red> a;
    const InInit<green> b;
    Recorded<green>::onStart = [] { throw std::runtime_error("no green"); };
    SCENARIO_CHECK_THROWS(initialize(), std::runtime_error, "no green");
    manager().finalize();
    std::ostringstream text;
    text << std::hex << std::setfill('*') << std::setw(99);
    manager().reportStart(text);
    const std::string report = text.str();
    SCENARIO_CHECK(report.rfind("package     dependencies  variables ms      start ms\n"
                                "initialize             0         0.0",
                                0) == 0);
    SCENARIO_CHECK(contains(report, "\ngreen                  1         0.0"));
    SCENARIO_CHECK(contains(report, "  failed\ntotal"));
}

void finaliseNeedsAnInitialise()
{
    InContextAliasMgrBase::args().push_back(new char[1]());
    SCENARIO_CHECK_THROWS(manager().finalize(), InEx::ExFinaliseBeforeInit,
                          "Call to finalize() before initialize().");
    SCENARIO_CHECK(InContextAliasMgrBase::args().empty());
    initialize();
    InContextAliasMgrBase::args().push_back(new char[1]());
    manager().finalize();
    SCENARIO_CHECK(InContextAliasMgrBase::args().empty());
    InContextAliasMgrBase::args().push_back(new char[1]());
    SCENARIO_CHECK_THROWS(manager().finalize(), InEx::ExDoubleFinalise, doubleFinalise);
    SCENARIO_CHECK(InContextAliasMgrBase::args().empty());
    SCENARIO_CHECK_THROWS(InInit<red>(), InEx::ExReinitWithoutGuard, needsGuard);
    // The guard passes the failure on, and keeps it back while another one is on its way.
    NoArguments none;
    SCENARIO_CHECK_THROWS(InInitGuard(none.argc, none.argv), InEx::ExDoubleFinalise,
                          doubleFinalise);
    const auto leaveByException = [&]
    {
        const InInitGuard guard(none.argc, none.argv);
        throw std::runtime_error("first");
    };
    SCENARIO_CHECK_THROWS(leaveByException(), std::runtime_error, "first");
}

void takesTheArgumentsOver()
{
    const std::string megabyte(1 << 20, 'm');
    const char* const words[] = {"program", "--word", megabyte.c_str()};
    int argc = 3;
    const char* const* argv = words;
    manager().initialize(argc, argv);
    SCENARIO_CHECK(argc == 0 && argv == nullptr);
    char again[] = "again";
    char* more[] = {again, nullptr};
    char** moreArguments = more; // as main has them
    argc = 1;
    manager().initialize(argc, moreArguments);
    SCENARIO_CHECK(argc == 0 && moreArguments == nullptr);
    const Vector<char*>& taken = InContextAliasMgrBase::args();
    const std::vector<std::string> expected{"program", "--word", megabyte, "again"};
    SCENARIO_CHECK(std::equal(taken.begin(), taken.end(), expected.begin(), expected.end()));
    SCENARIO_CHECK(taken.back() != again);

    argc = -1;
    SCENARIO_CHECK_THROWS(manager().initialize(argc, argv), ExInternalError,
                          "Assertion 'argc >= 0' failed.");
    argc = 1;
    SCENARIO_CHECK_THROWS(manager().initialize(argc, argv), ExInternalError,
                          "Assertion 'argc == 0 || argv != nullptr' failed.");
    argc = 2;
    moreArguments = more;
    SCENARIO_CHECK_THROWS(manager().initialize(argc, moreArguments), ExInternalError,
                          "Assertion 'argv[i] != nullptr' failed.");
    SCENARIO_CHECK(argc == 2 && moreArguments == more && taken.size() == 4);
    // No finalize: what was taken is released at the end all the same, as the leak check tells.
}

void finalisesAtExit()
{
    static const InInit<red> a;
    std::atexit(
        []
        {
            manager().finalize();
            if (events != "+red-red" || !InContextAliasMgrBase::args().empty())
                std::abort();
        });
    const char* const words[] = {"program", "--help"};
    int argc = 2;
    const char* const* argv = words;
    manager().initialize(argc, argv);
    SCENARIO_CHECK(InSettings::isHelpRequested());
}

void missingDependencyStartsNothing()
{
    const InInit<orphan> a;
    const InInit<red> b;
    SCENARIO_CHECK_THROWS(initialize(), InEx::ExPackageNotRegistered, absentReason().c_str());
    SCENARIO_CHECK(events.empty() && !InInit<base>::isInitialized());
    SCENARIO_CHECK(contains(dump(), "15 packages waiting to be initialize:\n"));
    SCENARIO_CHECK(contains(dump(), "\t'orphan' Not initialized\n\t'osal' Not initialized\n"));
    SCENARIO_CHECK(contains(dump(), "No packages saved.\n"));
    SCENARIO_CHECK(contains(graph(), "label=\"Kr::InInit<KrInit::absent>\", style=dashed"));
    SCENARIO_CHECK(!manager().isInitializing());
    manager().finalize();
}

void reportsCycles()
{
    const InInit<knotA> a;
    auto b = std::make_unique<InInit<knotB>>();
    const InInit<knotC> c;
    const InInit<knotD> d;
    const InInit<behindKnot> e;
    const InInit<selfish> f;
    SCENARIO_CHECK(cycles() == "No dependency cycles to report.\n");
    SCENARIO_CHECK_THROWS(initialize(), InEx::ExDependencyCycle,
                          "Init dependencies contain cycle(s)");
    SCENARIO_CHECK(events.empty());
    // d stays with a in truth, but b, which needs it, lists it again.
    const std::string report = "'knotA' is in a cycle with:\n\t'knotD'\n"
                               "'knotB' is in a cycle with:\n\t'knotC'\n\t'knotD'\n"
                               "'selfish' is in a cycle with:\n";
    SCENARIO_CHECK(cycles() == report);
    SCENARIO_CHECK(contains(dump(), "\t'knotA' Not initialized\n\t'knotB' Not initialized\n"));
    SCENARIO_CHECK(
        contains(dump(), "No packages saved.\nDependency cycle(s) detected...\n" + report));
    SCENARIO_CHECK(contains(graph(), "label=\"knotA\", color=red"));
    SCENARIO_CHECK(contains(graph(), "label=\"behindKnot\"]"));

    // A package that goes away after the failure leaves the report in order.
    b.reset();
    SCENARIO_CHECK(cycles() == "'knotA' is in a cycle with:\n\t'knotD'\n"
                               "'knotC' is in a cycle with:\n\t'knotD'\n"
                               "'selfish' is in a cycle with:\n");
    initialize(); // nothing new
    SCENARIO_CHECK(events.empty());
    manager().finalize();
    SCENARIO_CHECK(contains(dump(), "18 packages waiting to be initialize:\n"));
}

void drawsTheGraph()
{
    initialize();
    const InReinitGuard guard;
    SCENARIO_CHECK(contains(graph(), "label=\"initialize\", style=filled];\n"));
    Plain quoted("a\"b\\c\nd&");
    quoted.addDependency(InInit<logger>::getType()); // up already
    quoted.addDependency(&typeid(Plain));
    SCENARIO_CHECK(quoted.getDependencies().size() == 1);
    SCENARIO_CHECK(contains(graph(), "    p13 [label=\"a\\\"b\\\\c\\nd&amp;\", color=red];\n"));
    SCENARIO_CHECK(contains(graph(), "    p13 -> p6;\n    p13 -> p13 [color=red];\n}\n"));
    SCENARIO_CHECK(graph().rfind("digraph packages\n{\n", 0) == 0);
}

void startsEachTypeOnce()
{
    const InInit<red> first;
    const InInit<red> second;
    initialize();
    SCENARIO_CHECK(events == "+red");
    static std::unique_ptr<InInit<green>> fromWithin;
    Recorded<green>::onStart = []
    {
        const InReinitGuard guard;
        fromWithin = std::make_unique<InInit<green>>();
    };
    {
        const InReinitGuard guard;
        const InInit<red> third; // up already
        static const InInit<green> fourth;
        static const InInit<green> fifth;
    }
    SCENARIO_CHECK(events == "+red+green");
    manager().finalize();
    SCENARIO_CHECK(events == "+red+green-green-red");
    fromWithin.reset();
}

void failureInTheMiddleKeepsWhatIsUp()
{
    const InInit<red> a;
    auto b = std::make_unique<InInit<green>>();
    const InInit<blue> c;
    Recorded<green>::onStart = []
    {
        SCENARIO_CHECK(manager().isInitializing());
        SCENARIO_CHECK_THROWS(manager().finalize(), ExInternalError,
                              "Assertion '!_state->_initializing' failed.");
        raise<InEx::ExPackageInitError>(KR_HERE, green::name);
    };
    SCENARIO_CHECK_THROWS(initialize(), InEx::ExPackageInitError,
                          "Init error in package: 'green'.");
    SCENARIO_CHECK(events == "+red" && !manager().isInitializing());
    SCENARIO_CHECK(InInit<red>::isInitialized() && !InInit<green>::isInitialized());
    SCENARIO_CHECK(contains(dump(), "16 packages waiting to be initialize:\n"));
    SCENARIO_CHECK(contains(dump(), "\t'red' Initialized (0 dependencies)\n"));
    SCENARIO_CHECK(contains(dump(), "\t'green' Not initialized\n"));
    SCENARIO_CHECK(contains(dump(), "\t'blue' Not initialized\n"));

    initialize(); // nothing new: what failed is not tried again
    SCENARIO_CHECK(events == "+red");
    b.reset();
    SCENARIO_CHECK(!contains(dump(), "'green'"));
    Recorded<green>::onStart = nullptr;
    auto guard = std::make_unique<InReinitGuard>();
    const InInit<green> again; // another object of the type
    guard.reset();
    SCENARIO_CHECK(events == "+red+green");
    events.clear();
    manager().finalize();
    SCENARIO_CHECK(events == "-green-red");
}

void guardsAdmitLaterPackages()
{
    initialize();
    SCENARIO_CHECK_THROWS(InInit<red>(), InEx::ExReinitWithoutGuard, needsGuard);
    auto outer = std::make_unique<InReinitGuard>();
    const InInit<green> b;
    const InInit<needsLibrary> c; // what it needs is up: rank 0
    {
        const InReinitGuard inner;
        static const InInit<red> a;
    }
    SCENARIO_CHECK(events.empty());
    outer.reset();
    SCENARIO_CHECK(events == "+needsLibrary+red+green");
    SCENARIO_CHECK(contains(dump(), "\t'needsLibrary' Initialized (0 dependencies)\n"));

    // The pass of a guard raises into the guard's scope.
    const auto guardedOrphan = []
    {
        const InReinitGuard guard;
        static const InInit<orphan> lost;
    };
    SCENARIO_CHECK_THROWS(guardedOrphan(), InEx::ExPackageNotRegistered, absentReason().c_str());
    const auto leaveByException = []
    {
        const InReinitGuard guard;
        static const InInit<selfish> failing;
        throw std::runtime_error("first");
    };
    SCENARIO_CHECK_THROWS(leaveByException(), std::runtime_error, "first");
    SCENARIO_CHECK(contains(dump(), "\t'selfish' Not initialized\n"));

    events.clear();
    manager().finalize();
    SCENARIO_CHECK(events == "-green-red-needsLibrary");
    {
        const InReinitGuard guard; // also after the end, though nothing stops it any more
        static const InInit<blue> late;
        static const InInit<green> lateGreen;
        static const InInit<red> lateRed;
    }
    SCENARIO_CHECK(InInit<blue>::isInitialized());
}

void registersInTheMiddleOfAPass()
{
    const InInit<red> a;
    const InInit<alpha> c;
    static std::unique_ptr<InInit<green>> b;
    static std::unique_ptr<InInit<blue>> d;
    Recorded<red>::onStart = []
    { SCENARIO_CHECK_THROWS(InInit<green>(), InEx::ExReinitWithoutGuard, needsGuard); };
    // An open guard admits them to a pass of their own; here it closes inside the start routine.
    Recorded<alpha>::onStart = []
    {
        const InReinitGuard guard;
        d = std::make_unique<InInit<blue>>();
        b = std::make_unique<InInit<green>>();
    };
    initialize();
    SCENARIO_CHECK(events == "+red+green+blue+alpha" && !manager().isInitializing());
    SCENARIO_CHECK(contains(dump(), "No packages waiting to be initialize.\n"));
    events.clear();
    manager().finalize();
    b.reset();
    d.reset();
}

void openGuardPutsOffToTheSameCall()
{
    const InInit<red> a;
    const InInit<alpha> c;
    static std::unique_ptr<InReinitGuard> guard;
    static std::unique_ptr<InInit<green>> b;
    static std::unique_ptr<InInit<cyan>> late;
    Recorded<red>::onStart = [] { guard = std::make_unique<InReinitGuard>(); };
    Recorded<alpha>::onStart = [] { b = std::make_unique<InInit<green>>(); };
    // What a stop routine starts is stopped too.
    Recorded<alpha>::onStop = []
    {
        const InReinitGuard within;
        late = std::make_unique<InInit<cyan>>();
    };
    initialize();
    SCENARIO_CHECK(events == "+red+alpha+green");
    guard.reset();
    events.clear();
    manager().finalize();
    SCENARIO_CHECK(events == "-green-alpha+cyan-cyan-red");
    b.reset();
    late.reset();
}

void failingStopCanBeContinued()
{
    const InInit<red> a;
    const InInit<green> b;
    const InInit<blue> c;
    initialize();
    events.clear();
    Recorded<green>::onStop = []
    {
        SCENARIO_CHECK(manager().isFinalizing());
        throw std::runtime_error("stuck");
    };
    SCENARIO_CHECK_THROWS(manager().finalize(), std::runtime_error, "stuck");
    SCENARIO_CHECK(events == "-blue-green" && !manager().isFinalizing());
    SCENARIO_CHECK(contains(dump(), "\t'green' Not initialized\n"));
    SCENARIO_CHECK(contains(dump(), "\t'red' Initialized (0 dependencies)\n"));
    manager().finalize();
    SCENARIO_CHECK(events == "-blue-green-red");
    SCENARIO_CHECK_THROWS(manager().finalize(), InEx::ExDoubleFinalise, doubleFinalise);
}

void environmentIsASnapshot()
{
    const std::string before = OsEnv::getVariable("PATH");
    OsEnv::putVariable("PATH=elsewhere");
    OsEnv::putVariable("KR_SET_TOO_LATE=1");
    SCENARIO_CHECK(InInitMgr::getEnv("PATH") == before);
    SCENARIO_CHECK(InInitMgr::getEnv("KR_SET_TOO_LATE") == nullptr);
}

std::unique_ptr<OsSharedLib> loadPlugin()
{
    return std::make_unique<OsSharedLib>((programFolder + KR_TEST_PLUGIN).c_str());
}

/// What the plugin's packages did. They tell it through the live environment: so they need export
/// nothing, and the library can be unloaded.
std::string pluginEvents()
{
    const char* const told = OsEnv::getVariable("KR_PLUGIN_EVENTS");
    return told != nullptr ? told : "";
}

void libraryLoadedAtRunTime()
{
    initialize();
    std::unique_ptr<OsSharedLib> plugin;
    {
        const InReinitGuard guard;
        plugin = loadPlugin();
        static const InInit<needsEffects> ours; // needs a package of the library
        SCENARIO_CHECK(pluginEvents().empty());
    }
    SCENARIO_CHECK(pluginEvents() == "+effects+blending" && events == "+needsEffects");
    SCENARIO_CHECK(contains(dump(), "\t'effects' Initialized (0 dependencies)\n"
                                    "\t'blending' Initialized (1 dependencies)\n"
                                    "\t'needsEffects' Initialized (1 dependencies)\n"));
    manager().finalize();
    SCENARIO_CHECK(pluginEvents() == "+effects+blending-blending-effects");
}

void libraryUnloadedWhileUp()
{
    auto plugin = loadPlugin(); // before the first pass no guard is needed
    initialize();
    SCENARIO_CHECK(pluginEvents() == "+effects+blending");
    plugin.reset();
    SCENARIO_CHECK(contains(dump(), "13 packages currently saved:\n"));
    SCENARIO_CHECK(!contains(dump(), "effects") && !contains(graph(), "effects"));
    manager().finalize();
}

void libraryRaises()
{
    initialize();
    OsEnv::putVariable("KR_PLUGIN_FAILS=1");
    std::unique_ptr<OsSharedLib> plugin;
    const auto load = [&plugin]
    {
        const InReinitGuard guard;
        plugin = loadPlugin();
    };
    SCENARIO_CHECK_THROWS(load(), InEx::ExPackageInitError, "Init error in package: 'blending'.");
    SCENARIO_CHECK(pluginEvents() == "+effects");
    manager().finalize();
    SCENARIO_CHECK(pluginEvents() == "+effects-effects");
}

const Scenario::Case cases[] = {
    {"order", libraryStartsInOrderAndStopsInReverse},
    {"program", programPackagesFollowTheirDependencies},
    {"reportStart", reportsTheStart},
    {"finalise", finaliseNeedsAnInitialise},
    {"arguments", takesTheArgumentsOver},
    {"finaliseAtExit", finalisesAtExit},
    {"missing", missingDependencyStartsNothing},
    {"cycle", reportsCycles},
    {"graph", drawsTheGraph},
    {"duplicates", startsEachTypeOnce},
    {"failure", failureInTheMiddleKeepsWhatIsUp},
    {"guards", guardsAdmitLaterPackages},
    {"nestedPass", registersInTheMiddleOfAPass},
    {"openGuard", openGuardPutsOffToTheSameCall},
    {"failingStop", failingStopCanBeContinued},
    {"environment", environmentIsASnapshot},
    {"plugin", libraryLoadedAtRunTime},
    {"pluginUnloaded", libraryUnloadedWhileUp},
    {"pluginRaises", libraryRaises},
};

} // namespace

int main(int argc, char** argv)
{
    const std::string program = argv[0];
    programFolder = program.substr(0, program.find_last_of("/\\") + 1);
    return Scenario::run(cases, argc, argv);
}
