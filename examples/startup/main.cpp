// A small application on the initialisation framework: packages that start in the order of their
// dependencies, settings from the command line and the environment, a service bound to its package.
//
//   startup --samples=8 --shading traced     STARTUP_SPHERES=9 startup     startup --help
//   startup --cycle                          what a start-up that cannot work looks like

#include "plugins.h"
#include "viewer.h"

#include <base/inContextAlias.h>
#include <base/inContextAliasMgrBase.h>
#include <base/inEx.h>
#include <base/inInit.imp>
#include <base/inInitMgr.h>
#include <base/inSettings.h>
#include <base/inVariable.h>
#include <base/inVariableEx.h>
#include <base/osEnv.h>
#include <base/trace.h>

#include <cstdlib>
#include <iostream>
#include <string>

namespace KrInit
{

struct application
{
    static constexpr const char* name = "application";
    using Dependencies = Kr::InDependencies<viewer>;
    static void start() {}
    static void stop() {}
};

} // namespace KrInit

template class Kr::InInit<KrInit::application>;

namespace
{

Kr::InInit<KrInit::application> package;

const Kr::InVariable<bool> cycle(package, "application.cycle", false,
                                 "Load two plug-ins that need each other");
const Kr::InContextAlias cycleAlias("application.cycle", "--cycle");

/// Shows each exception before it is raised.
class ConsoleTrace : public Kr::Trace
{
public:
    void printException(const Kr::ExBase& exception, const char*, int) noexcept override
    {
        std::cout << "about to be raised: " << exception.getDetailedReason() << '\n';
    }
};

void showStart()
{
    std::cout << "\nThe packages, in the order of their start:\n";
    Kr::InInitMgr::getInstance().reportStart(std::cout);

    std::cout << "\nThe settings and where they come from:\n";
    Kr::InSettings::dumpAll(std::cout);

    std::cout << "\nThe words that are left for the application:";
    for (const char* word : Kr::InContextAliasMgrBase::getRemainingWords())
        std::cout << " '" << word << "'";
    std::cout << '\n';
}

void showRaise()
{
    std::cout << "\nA raise:\n";
    ConsoleTrace trace;
    Kr::Trace& previous = Kr::TraceManager::getInstance().setTrace(trace);
    try
    {
        Scene::getInstance().find("teapot");
    }
    catch (const SceneEx& error)
    {
        std::cout << "caught: " << error.getReason() << '\n';
    }
    Kr::TraceManager::getInstance().setTrace(previous);
}

void run()
{
    showStart();
    showRaise();
    if (cycle.getValue())
        loadPlugins();
    std::cout << "\nThe stop, in the reverse order:" << std::endl;
    Kr::OsEnv::putVariable("KR_DEBUG_INITIALIZE=1"); // the framework names each step from here on
}

} // namespace

int main(int argc, char** argv)
{
    std::string failure;
    Kr::InInitMgr& manager = Kr::InInitMgr::getInstance();
    try
    {
        if (Kr::InSettings::answerHelp(argc, argv, std::cout)) // before any package starts
            return EXIT_SUCCESS;
        Kr::InSettings::refuseUnknownOptions(argc, argv);
        manager.initialize(argc, argv);
        run();
    }
    catch (const Kr::InVariableEx::ExUnknownOption& error) // nothing has been started
    {
        std::cerr << "startup: " << error.getReason() << " See --help.\n";
        return EXIT_FAILURE;
    }
    catch (const Kr::InEx::ExDependencyCycle& error)
    {
        manager.reportCycles(std::cout);
        failure = error.getReason();
    }
    catch (const std::exception& error)
    {
        failure = error.what();
    }
    // Rather than an InInitGuard: this also stops what a failed start left up.
    manager.finalize();

    if (failure.empty())
        return EXIT_SUCCESS;
    std::cerr << "startup: " << failure << '\n';
    return EXIT_FAILURE;
}
